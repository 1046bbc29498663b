#pragma once

#include "support/private_bus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>

#include <gtest/gtest.h>

namespace tidebrook {

/// A daemon of the system, as far as its interface goes, on a connection of its own, which ends
/// with it. Needs an event loop.
class SystemDaemon : public QDBusVirtualObject {
public:
    using Interfaces = QMap<QString, QVariantMap>;
    using Objects = QMap<QDBusObjectPath, Interfaces>;

    SystemDaemon(const QByteArray &bus, const QString &name, const QString &path)
        : name_(name), path_(path),
          connection_(QDBusConnection::connectToBus(QString::fromUtf8(bus), name)) {
        qDBusRegisterMetaType<Interfaces>();
        qDBusRegisterMetaType<Objects>();
        EXPECT_TRUE(connection_.registerVirtualObject(path, this, QDBusConnection::SubPath));
    }
    ~SystemDaemon() override { QDBusConnection::disconnectFromBus(name_); }

    void begin() { EXPECT_TRUE(connection_.registerService(name_)); }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &from) override {
        return from.send(message.createReply(answerTo(message)));
    }

protected:
    virtual QVariant answerTo(const QDBusMessage &message) = 0;
    void signal(const QString &path, const QString &interface, const QString &member,
                const QVariantList &arguments) {
        QDBusMessage message = QDBusMessage::createSignal(path, interface, member);
        message.setArguments(arguments);
        EXPECT_TRUE(connection_.send(message));
    }
    void signalProperties(const QString &path, const QString &interface,
                          const QVariantMap &changed) {
        signal(path, QStringLiteral("org.freedesktop.DBus.Properties"),
               QStringLiteral("PropertiesChanged"), {interface, changed, QStringList()});
    }

    const QString name_;
    const QString path_;

private:
    QDBusConnection connection_;
};

class NetworkManager : public SystemDaemon {
public:
    explicit NetworkManager(const QByteArray &bus)
        : SystemDaemon(bus, QStringLiteral("org.freedesktop.NetworkManager"),
                       QStringLiteral("/org/freedesktop/NetworkManager")) {}

    void set(quint32 state, quint32 metered) {
        properties_ = {{QStringLiteral("Version"), QStringLiteral("1.42.4")},
                       {QStringLiteral("State"), state},
                       {QStringLiteral("Metered"), metered}};
        signalProperties(path_, name_, properties_);
    }

protected:
    QVariant answerTo(const QDBusMessage &) override { return properties_; }

private:
    QVariantMap properties_;
};

class ModemManager : public SystemDaemon {
public:
    explicit ModemManager(const QByteArray &bus)
        : SystemDaemon(bus, QStringLiteral("org.freedesktop.ModemManager1"),
                       QStringLiteral("/org/freedesktop/ModemManager1")) {}

    /// A modem that is there from now on, or has changed.
    void set(int number, int state, quint32 registration) {
        const QString path = QStringLiteral("%1/Modem/%2").arg(path_).arg(number);
        const QString modem = name_ + QStringLiteral(".Modem");
        const QString network = modem + QStringLiteral(".Modem3gpp");
        Interfaces &interfaces = objects_[QDBusObjectPath(path)];
        const bool isNew = interfaces.isEmpty();
        const bool isOther = interfaces[network].value(registrationState) != registration;
        interfaces[modem] = {{QStringLiteral("Manufacturer"), QStringLiteral("M")},
                             {QStringLiteral("State"), state}};
        interfaces[network] = {{registrationState, registration}};
        if (isNew)
            signal(path_, QStringLiteral("org.freedesktop.DBus.ObjectManager"),
                   QStringLiteral("InterfacesAdded"),
                   {QVariant::fromValue(QDBusObjectPath(path)), QVariant::fromValue(interfaces)});
        else if (isOther)
            signalProperties(path, network, interfaces[network]);
        else
            signal(path, modem, QStringLiteral("StateChanged"), {0, state, 0U});
    }

protected:
    QVariant answerTo(const QDBusMessage &) override { return QVariant::fromValue(objects_); }

private:
    const QString registrationState = QStringLiteral("RegistrationState");
    Objects objects_;
};

} // namespace tidebrook
