#pragma once

#include <QPointer>

class QWidget;

namespace tidebrook {

class Dialog;

/// While it lives, a dialog waits: the wait cursor shows, its controls and the soft key of one
/// command cannot be used, and its other soft key can. The dialog outlives it.
class Waiting {
public:
    Waiting(Dialog &dialog, int command);
    /// Gives everything back, and the focus to whatever had it if the dialog is on top.
    ~Waiting();
    Waiting(const Waiting &) = delete;
    Waiting &operator=(const Waiting &) = delete;

private:
    Dialog &dialog_;
    const int command_;
    const QPointer<QWidget> focusBefore_;
};

} // namespace tidebrook
