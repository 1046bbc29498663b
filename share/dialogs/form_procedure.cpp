#include "share/dialogs/form_procedure.h"

#include "app/messages.h"
#include "app/text_screens.h"
#include "kit/dialog.h"
#include "res/strings.h"

#include <QKeyEvent>

namespace tidebrook {

FormProcedure::~FormProcedure() = default;

bool FormProcedure::prepare(Dialog &dialog, MenuBarId menuBarId) {
    dialog_ = &dialog;
    dialog.makeTitleStrip(resourceString(programNameString));
    dialog.makeTitleLine();
    return dialog.makeMenuBar(menuBarId);
}

void FormProcedure::helpRequested() { showHelp(state_); }

std::optional<int> FormProcedure::commandOfKey(const QKeyEvent &event) const {
    const bool isEnter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    return isEnter ? std::optional(nextCommand_) : std::nullopt;
}

void FormProcedure::leave(int result) {
    if (task_ != nullptr)
        task_->raise();
    waiting_.reset();
    dialog_->end(result);
}

void FormProcedure::tellNoThread() {
    waiting_.reset();
    tellProblem(state_, memoryProblemString);
}

} // namespace tidebrook
