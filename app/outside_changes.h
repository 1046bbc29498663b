#pragma once

#include <QBasicTimer>
#include <QObject>

namespace tidebrook {

class DeviceWatch;
struct AppState;

/// Notices that the database or the registry was changed: by another program, such as the
/// downloader, or by this one, because the files do not show by which. So a receiver reads its rows
/// and compares them. Nothing is polled, and nothing is reported while the window cannot be seen.
class OutsideChanges : public QObject {
    Q_OBJECT

public:
    /// The one of a window, which owns it.
    static OutsideChanges &of(AppState &state);

Q_SIGNALS:
    /// Sent at most once a second; for what happened out of sight, when the user comes back.
    void noticed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    explicit OutsideChanges(AppState &state);
    void note();
    void watch();

    AppState &state_;
    DeviceWatch *watch_ = nullptr; // once the program has started
    int due_ = 2;                  // reports to be sent; two for what happened before
    QBasicTimer pause_;
};

} // namespace tidebrook
