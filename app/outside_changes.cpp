#include "app/outside_changes.h"

#include "app/app_state.h"
#include "kit/screen_stack.h"
#include "platform/desktop/device_watch.h"
#include "platform/sync/pause.h"

#include <QEvent>
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
}

void OutsideChanges::note() {
    due_ = reports;
    if (isSeen(state_.stack) && !pause_.isActive())
        pause_.start(pauseLength(), this);
}

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

#include "moc_outside_changes.cpp"
