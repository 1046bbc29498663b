#include "app/outside_changes.h"

#include "app/app_state.h"
#include "kit/screen_stack.h"
#include "platform/sync/pause.h"

#include <QEvent>
#include <QFileSystemWatcher>
#include <QWindow>

#include <algorithm>

namespace tidebrook {

namespace {

constexpr int pause = 1000; // ms
constexpr int shortestPause = 50;
// What is written to a journal can be read when its writer lets go of the lock: a pause later, or
// where the disk is slow, two.
constexpr int reports = 2;

int pauseLength() { return std::max(scaledPause(pause), shortestPause); }

bool isSeen(const QWidget &window) {
    return window.windowHandle() != nullptr && window.windowHandle()->isExposed();
}

QString journalOf(const QString &database) { return database + u"-wal"; }

} // namespace

OutsideChanges &OutsideChanges::of(AppState &state) {
    auto *made = state.stack.findChild<OutsideChanges *>({}, Qt::FindDirectChildrenOnly);
    return made != nullptr ? *made : *new OutsideChanges(state);
}

OutsideChanges::OutsideChanges(AppState &state)
    : QObject(&state.stack), state_(state), databases_{state.device.root.filePath(u"RSSVault.sdf"),
                                                       state.device.root.registryPath()} {
    state.stack.installEventFilter(this);
    pause_.start(pauseLength(), this);
}

void OutsideChanges::watch() {
    if (watcher_ == nullptr) {
        watcher_ = new QFileSystemWatcher(this);
        connect(watcher_, &QFileSystemWatcher::fileChanged, this, &OutsideChanges::note);
    }
    // A journal that was removed is not watched any more, and may have been made anew.
    for (const QString &database : databases_) {
        if (!watcher_->files().contains(journalOf(database)))
            watcher_->addPath(journalOf(database));
    }
}

void OutsideChanges::note() {
    due_ = reports;
    if (isSeen(state_.stack) && !pause_.isActive())
        pause_.start(pauseLength(), this);
}

// The journals are watched again before anyone reads, so that nothing is missed.
void OutsideChanges::timerEvent(QTimerEvent *) {
    pause_.stop();
    watch();
    if (!isSeen(state_.stack) || due_ == 0)
        return;
    if (--due_ > 0)
        pause_.start(pauseLength(), this);
    Q_EMIT noticed();
}

bool OutsideChanges::eventFilter(QObject *, QEvent *event) {
    if (event->type() == QEvent::WindowActivate && due_ > 0 && !pause_.isActive())
        pause_.start(0, this);
    return false;
}

} // namespace tidebrook
