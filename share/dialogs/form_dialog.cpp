#include "share/dialogs/form_dialog.h"

#include "app/messages.h"
#include "app/text_screens.h"
#include "kit/dialog.h"
#include "res/strings.h"

#include <QKeyEvent>

namespace tidebrook {

FormDialog::~FormDialog() = default;

bool FormDialog::prepare(Dialog &dialog, int menuBarId) {
    dialog_ = &dialog;
    dialog.makeTitleStrip(resourceString(programNameString));
    dialog.makeTitleLine();
    return dialog.makeMenuBar(menuBarId);
}

void FormDialog::helpRequested() { showHelp(state_); }

std::optional<int> FormDialog::commandOfKey(const QKeyEvent &event) const {
    const bool isEnter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    return isEnter ? std::optional(nextCommand_) : std::nullopt;
}

void FormDialog::leave(int result) {
    if (errand_ != nullptr)
        errand_->raise();
    waiting_.reset();
    dialog_->end(result);
}

void FormDialog::tellNoThread() {
    waiting_.reset();
    tellProblem(state_, memoryProblemString);
}

} // namespace tidebrook
