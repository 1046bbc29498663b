#include "app/outside_changes.h"

#include "app/app_state.h"
#include "kit/screen_stack.h"
#include "platform/desktop/device_watch.h"
#include "platform/sync/pause.h"

#include <QEvent>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace tidebrook {

namespace {

constexpr int pause = 1000; // ms
constexpr int shortestPause = 50;
// What is written to a journal can be read when its writer lets go of the lock: a pause later, or
// where the disk is slow, several. The pauses become longer.
constexpr int reports = 3;

int pauseLength() { return std::max(scaledPause(pause), shortestPause); }

bool isSeen(const QWidget &window) {
    return window.windowHandle() != nullptr && window.windowHandle()->isExposed();
}

} // namespace

OutsideChanges &OutsideChanges::of(AppState &state) {
    auto *made = state.stack.findChild<OutsideChanges *>({}, Qt::FindDirectChildrenOnly);
    return made != nullptr ? *made : *new OutsideChanges(state);
}

OutsideChanges::OutsideChanges(AppState &state) : QObject(&state.stack), state_(state) {
    state.stack.installEventFilter(this);
    pause_.start(pauseLength(), this);
}

void OutsideChanges::watch() {
    if (watch_ != nullptr)
        return;
    watch_ = new DeviceWatch(state_.device.root, this);
    connect(watch_, &DeviceWatch::changed, this, &OutsideChanges::note);
    watch_->setScope(DeviceWatch::Scope::Content);
    if (QWindow *window = state_.stack.windowHandle())
        window->installEventFilter(this);
}

void OutsideChanges::note() {
    const bool isLongPause = std::exchange(due_, reports) < reports;
    if (isSeen(state_.stack) && (isLongPause || !pause_.isActive()))
        pause_.start(pauseLength(), this);
}

void OutsideChanges::timerEvent(QTimerEvent *) {
    pause_.stop();
    watch();
    if (!isSeen(state_.stack) || due_ == 0)
        return;
    if (--due_ > 0)
        pause_.start(pauseLength() << (reports - due_), this);
    Q_EMIT noticed();
}

bool OutsideChanges::eventFilter(QObject *, QEvent *event) {
    const bool isBack = event->type() == QEvent::WindowActivate || event->type() == QEvent::Expose;
    if (isBack && due_ > 0 && isSeen(state_.stack) && !pause_.isActive())
        pause_.start(0, this);
    return false;
}

} // namespace tidebrook

#include "moc_outside_changes.cpp"
