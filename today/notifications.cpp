#include "today/notifications.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>

namespace tidebrook {

namespace {

using namespace Qt::StringLiterals;

const QString service = u"org.freedesktop.Notifications"_s;
const QString path = u"/org/freedesktop/Notifications"_s;
constexpr int usualTime = -1; // as the desktop has it

} // namespace

Notifications::Notifications() {
    QDBusConnection::sessionBus().connect(service, path, service, u"ActionInvoked"_s, this,
                                          SLOT(act(uint, QString)));
}

void Notifications::show(const QString &title, const QString &text) {
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, service, u"Notify"_s);
    call << u"Tidebrook"_s << shown_ << u"tidebrook"_s << title << text
         << QStringList{u"default"_s, title} << QVariantMap{{u"desktop-entry"_s, u"tidebrook"_s}}
         << usualTime;
    auto *reply = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply] {
        const QDBusPendingReply<uint> id(*reply);
        shown_ = id.isValid() ? id.value() : 0;
        reply->deleteLater();
    });
}

void Notifications::act(uint id, const QString &action) {
    if (id == shown_ && action == u"default")
        Q_EMIT tapped();
}

} // namespace tidebrook

#include "moc_notifications.cpp"
