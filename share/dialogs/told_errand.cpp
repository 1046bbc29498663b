#include "share/dialogs/told_errand.h"

#include "app/base/messages.h"
#include "res/strings.h"
#include "ui/kit/screen_stack.h"

namespace tidebrook {

void startErrand(AppState &state, const std::function<int()> &work) {
    const auto tell = [&state](int messageId) {
        if (messageId != 0)
            ShowError(state, messageId);
    };
    if (!state.errands.run(
            &state.stack, [work](const StopSignal &) { return work(); }, tell))
        ShowError(state, memoryProblemString);
}

} // namespace tidebrook
