#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QStringList>

class QFileSystemWatcher;

namespace tidebrook {

struct AppState;

/// Notices that the database or the registry was changed: by another program, such as the
/// downloader, or by this one, for the files do not tell by whom. So whoever is told reads what it
/// shows, and compares. Nothing is polled, and nothing is told while the window cannot be seen.
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
    const QStringList databases_;
    QFileSystemWatcher *watcher_ = nullptr; // once the program has started
    int due_ = 1;                           // tellings of what was changed, for all that is known
    QBasicTimer pause_;
};

} // namespace tidebrook
