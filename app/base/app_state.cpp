#include "app/base/app_state.h"

#include "ui/kit/list_view.h"
#include "ui/kit/progress_line.h"
#include "ui/kit/screen_stack.h"

namespace tidebrook {

namespace {

template <class Worker> void showOn(ProgressLine &line, const Worker &worker) {
    QObject::connect(&worker, &Worker::begun, &line, &ProgressLine::begin);
    QObject::connect(&worker, &Worker::done, &line, &ProgressLine::finish);
}

} // namespace

AppState::AppState(DeviceParts &parts, ScreenStack &screenStack)
    : device(parts), stack(screenStack), fills(parts.dbMutex) {
    showOn(stack.progressLine(), changes);
    showOn(stack.progressLine(), settings);
    showOn(stack.progressLine(), fills);
}

} // namespace tidebrook
