#include "share/dialogs/form_procedure.h"

#include "app/messages.h"
#include "kit/dialog.h"
#include "res/strings.h"

namespace tidebrook {

void FormProcedure::initialise() {
    dialog().useTitleStrip();
    dialog().drawTitleLine();
    dialog().makeMenuBar(keys_.menuBarId);
    dialog().setBackKeys(keys_.backCommand);
    dialog().setEnterKeys(keys_.nextCommand);
}

void FormProcedure::leave(int result) {
    if (task_ != nullptr)
        task_->raise();
    endWaiting();
    dialog().end(result);
}

void FormProcedure::reportNoThread() {
    endWaiting();
    tellProblem(state_, memoryProblemString);
}

} // namespace tidebrook
