#pragma once

#include <QObject>
#include <QString>

namespace tidebrook {

/// Shows notifications of the desktop, each in place of the one before. Where there is no such
/// service nothing happens. Belongs to the user-interface thread, which it never holds up.
class Notifications : public QObject {
    Q_OBJECT

public:
    Notifications();

    void show(const QString &title, const QString &text);

Q_SIGNALS:
    /// The user has tapped the one that is shown.
    void tapped();

private Q_SLOTS:
    void act(uint id, const QString &action);

private:
    uint shown_ = 0; // its id; 0 when there was none
};

} // namespace tidebrook
