#include "kit/waiting.h"

#include "kit/dialog.h"
#include "kit/menu_bar.h"

#include <QGuiApplication>

namespace tidebrook {

Waiting::Waiting(Dialog &dialog, int command)
    : dialog_(dialog), command_(command), focusBefore_(dialog.focusWidget()) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    dialog_.form().setEnabled(false);
    dialog_.menuBar()->enable(command_, false);
    dialog_.giveFocus(&dialog_); // for the keys of the dialog
}

Waiting::~Waiting() {
    QGuiApplication::restoreOverrideCursor();
    dialog_.form().setEnabled(true);
    dialog_.menuBar()->enable(command_, true);
    dialog_.giveFocus(focusBefore_);
}

} // namespace tidebrook
