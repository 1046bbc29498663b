#pragma once

#include <QObject>

namespace tidebrook {

class Dialog;
class ScreenMenu;

/// What a dialog does: its rules, behind the controls of its template. Used on the user-interface
/// thread.
class DialogProcedure : public QObject {
public:
    /// The dialog was made and is about to be shown. It outlives every other call.
    void start(Dialog &dialog) {
        dialog_ = &dialog;
        initialise();
    }
    /// A menu entry, a soft key, a key, or a command that the dialog was posted.
    virtual void command(int id) = 0;
    /// The dialog came to the front.
    virtual void activated() {}
    /// As `Layer::summoned`.
    virtual bool summoned() { return false; }
    /// The controls were laid out for another size.
    virtual void sized() {}
    /// The window is being closed: ends the dialog, at once or later; with 0 by default.
    virtual void close();
    /// Whether the help can be opened over the dialog.
    virtual bool hasHelp() const { return true; }
    /// The menu is about to open.
    virtual void prepareMenu(ScreenMenu &) {}

protected:
    /// Makes the dialog's menu bar, and sets up its header, its keys and its controls.
    virtual void initialise() = 0;

    Dialog &dialog() const { return *dialog_; }

private:
    Dialog *dialog_ = nullptr;
};

} // namespace tidebrook
