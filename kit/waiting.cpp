#include "kit/waiting.h"

#include "kit/dialog.h"
#include "kit/menu_bar.h"
#include "kit/screen_stack.h"

#include <QGuiApplication>

namespace tidebrook {

Waiting::Waiting(Dialog &dialog, int command)
    : dialog_(dialog), command_(command), focusBefore_(dialog.focusWidget()) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    dialog_.form().setEnabled(false);
    dialog_.menuBar()->enable(command_, false);
    if (dialog_.stack().top() == &dialog_)
        dialog_.setFocus(); // for the keys of the dialog
}

Waiting::~Waiting() {
    QGuiApplication::restoreOverrideCursor();
    dialog_.form().setEnabled(true);
    dialog_.menuBar()->enable(command_, true);
    if (dialog_.stack().top() != &dialog_)
        return;
    if (QWidget *focus = focusBefore_ ? focusBefore_.data() : dialog_.firstFocus())
        focus->setFocus();
}

} // namespace tidebrook
