#include "app/app_state.h"

#include "app/messages.h"
#include "app/text_screens.h"
#include "kit/list_view.h"
#include "kit/progress_line.h"
#include "kit/screen_stack.h"

namespace tidebrook {

namespace {

template <class Worker> void showOn(ProgressLine &line, const Worker &worker) {
    QObject::connect(&worker, &Worker::begun, &line, &ProgressLine::begin);
    QObject::connect(&worker, &Worker::done, &line, &ProgressLine::finish);
}

} // namespace

Queues::Queues(Device &device)
    : dbMutex(device.root, u"RSSMutex"), fills(dbMutex), updates(device) {}

AppState::AppState(Device &parts, ScreenStack &screenStack)
    : Queues(parts), device(parts), stack(screenStack) {
    showOn(stack.progressLine(), changes);
    showOn(stack.progressLine(), settings);
    showOn(stack.progressLine(), blockingTasks);
    showOn(stack.progressLine(), fills);
    showOn(stack.progressLine(), updates);
    QObject::connect(&updates, &UpdateJobs::stepped, &stack.progressLine(),
                     &ProgressLine::setSteps);
    QObject::connect(&stack, &ScreenStack::helpRequested, &stack,
                     [&screens = stack] { showHelp(screens); });
    QObject::connect(&updates, &UpdateJobs::failed, &stack,
                     [this](const QString &category, const QString &channel) {
                         ShowUpdateError(*this, category, channel);
                     });
}

void Queues::finish() {
    updates.finish();
    fills.finish();
    blockingTasks.finish();
    settings.finish();
    changes.finish();
}

} // namespace tidebrook
