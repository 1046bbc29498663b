#include "share/dialogs/reported_task.h"

#include "app/messages.h"
#include "kit/screen_stack.h"
#include "res/strings.h"

namespace tidebrook {

void startReportedTask(AppState &state, const std::function<int()> &work) {
    const auto run = [work, &device = state.device](const StopSignal &) {
        return recordProblem(device, work());
    };
    const auto report = [&state](int messageId) {
        if (messageId != 0)
            ShowError(state, messageId);
    };
    if (!state.blockingTasks.run(&state.stack, run, report))
        tellProblem(state, memoryProblemString);
}

} // namespace tidebrook
