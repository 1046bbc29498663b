#include "share/dialogs/new_channel_wizard.h"

#include "kit/dialog.h"
#include "res/commands.h"
#include "res/ids.h"
#include "share/dialogs/how_to_add_page.h"

namespace tidebrook {

int runNewChannelWizard(AppState &state, QObject *receiver, const JobEnd &added) {
    HowToAddPage page({state, receiver, added});
    const int result = RunDialog(HowToAddTemplate, state.stack, page);
    return result == CommandFinish ? 0 : CommandCancelWizard;
}

} // namespace tidebrook
