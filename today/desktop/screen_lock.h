#pragma once

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QObject>
#include <QSet>

namespace tidebrook {

/// Whether the user's screen is locked, or its saver runs, as far as the desktop's savers and
/// logind say so on the buses. Without a bus it never is.
class ScreenLock : public QObject {
    Q_OBJECT

public:
    /// The state becomes known later: nothing waits for an answer of a bus.
    explicit ScreenLock(QObject *parent);

    bool isLocked() const { return !lockedBy_.isEmpty(); }

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void onSaverChanged(const QDBusMessage &signal);
    void onSessionChanged(const QDBusMessage &signal);

private:
    void watchSavers();
    void watchSessions();
    void watchSession(const QDBusObjectPath &session);
    void note(const QString &interface, bool isLocked);

    QSet<QString> lockedBy_; // interfaces
};

} // namespace tidebrook
