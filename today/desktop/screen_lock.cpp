#include "today/desktop/screen_lock.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <functional>

namespace tidebrook {

namespace {

using namespace Qt::StringLiterals;

const QString login = u"org.freedesktop.login1"_s;
const QString sessionInterface = u"org.freedesktop.login1.Session"_s;
const QString properties = u"org.freedesktop.DBus.Properties"_s;
const QString lockedHint = u"LockedHint"_s;

/// Their services, and the interfaces of these.
QStringList savers() {
    return {u"org.freedesktop.ScreenSaver"_s, u"org.gnome.ScreenSaver"_s, u"org.xfce.ScreenSaver"_s,
            u"org.cinnamon.ScreenSaver"_s, u"org.mate.ScreenSaver"_s};
}

/// Does nothing when the call fails, and starts no service.
template <typename Value>
void ask(const QDBusConnection &bus, QDBusMessage call, QObject *receiver,
         std::function<void(const Value &)> take) {
    call.setAutoStartService(false);
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), receiver);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, receiver, [watcher, take] {
        watcher->deleteLater();
        if (const QDBusPendingReply<Value> reply = *watcher; reply.isValid())
            take(reply.value());
    });
}

} // namespace

ScreenLock::ScreenLock(QObject *parent) : QObject(parent) {
    watchSavers();
    watchSessions();
}

void ScreenLock::watchSavers() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    auto *ends = new QDBusServiceWatcher(this);
    ends->setConnection(bus);
    ends->setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(ends, &QDBusServiceWatcher::serviceUnregistered, this,
            [this](const QString &saver) { note(saver, false); });
    for (const QString &saver : savers()) {
        ends->addWatchedService(saver);
        bus.connect({}, {}, saver, u"ActiveChanged"_s, this, SLOT(onSaverChanged(QDBusMessage)));
        const QString path = u'/' + QString(saver).replace(u'.', u'/');
        ask<bool>(bus, QDBusMessage::createMethodCall(saver, path, saver, u"GetActive"_s), this,
                  [this, saver](bool isActive) { note(saver, isActive); });
    }
}

void ScreenLock::onSaverChanged(const QDBusMessage &signal) {
    note(signal.interface(), signal.arguments().value(0).toBool());
}

/// Lock and Unlock are requests to a locker, which need not follow them, and are no states.
void ScreenLock::watchSessions() {
    const QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(
        login, u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s, u"GetSession"_s);
    // A program that the user's service manager started is in no session itself.
    call << qEnvironmentVariable("XDG_SESSION_ID", u"auto"_s);
    ask<QDBusObjectPath>(bus, call, this,
                         [this](const QDBusObjectPath &session) { watchSession(session); });
}

void ScreenLock::watchSession(const QDBusObjectPath &session) {
    QDBusConnection bus = QDBusConnection::systemBus();
    bus.connect({}, session.path(), properties, u"PropertiesChanged"_s, this,
                SLOT(onSessionChanged(QDBusMessage)));
    QDBusMessage call = QDBusMessage::createMethodCall(login, session.path(), properties, u"Get"_s);
    call << sessionInterface << lockedHint;
    ask<QDBusVariant>(bus, call, this, [this](const QDBusVariant &isLocked) {
        note(sessionInterface, isLocked.variant().toBool());
    });
}

void ScreenLock::onSessionChanged(const QDBusMessage &signal) {
    const QVariantMap changes = qdbus_cast<QVariantMap>(signal.arguments().value(1));
    if (changes.contains(lockedHint))
        note(sessionInterface, changes.value(lockedHint).toBool());
}

void ScreenLock::note(const QString &interface, bool isLocked) {
    const bool wasLocked = this->isLocked();
    if (isLocked)
        lockedBy_.insert(interface);
    else
        lockedBy_.remove(interface);
    if (wasLocked != this->isLocked())
        Q_EMIT changed();
}

} // namespace tidebrook

#include "moc_screen_lock.cpp"
