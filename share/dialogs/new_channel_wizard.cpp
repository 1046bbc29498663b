#include "share/dialogs/new_channel_wizard.h"

#include "share/dialogs/how_to_add_page.h"
#include "ui/kit/dialog.h"

namespace tidebrook {

int runNewChannelWizard(AppState &state, QObject *receiver, const JobEnd &added) {
    HowToAddPage page({state, receiver, added});
    RunDialog(HowToAddPage::templateId, state.stack, page);
    return 0;
}

} // namespace tidebrook
