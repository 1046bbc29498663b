#pragma once

#include <QPointer>

class QWidget;

namespace tidebrook {

class Dialog;

/// While it lives, a dialog waits: the wait cursor shows, and the controls and the soft key of one
/// command are disabled. The dialog outlives it.
class Waiting {
public:
    Waiting(Dialog &dialog, int command);
    /// Restores all of that, and the focus.
    ~Waiting();
    Waiting(const Waiting &) = delete;
    Waiting &operator=(const Waiting &) = delete;

private:
    Dialog &dialog_;
    const int command_;
    const QPointer<QWidget> focusBefore_;
};

} // namespace tidebrook
