#pragma once

#include <optional>

class QKeyEvent;

namespace tidebrook {

class Dialog;
class ScreenMenu;

/// What a dialog does: its rules, behind the controls that its template gives it. All is called on
/// the user-interface thread.
class DialogProcedure {
public:
    DialogProcedure() = default;
    virtual ~DialogProcedure() = default;
    DialogProcedure(const DialogProcedure &) = delete;
    DialogProcedure &operator=(const DialogProcedure &) = delete;

    /// The dialog was made and is about to be shown; it outlives every other call. False ends it
    /// at once, with -1.
    virtual bool initialise(Dialog &dialog) = 0;
    /// A menu entry, a soft key, or a command that the dialog was posted.
    virtual void command(int id) = 0;
    /// The dialog came to the front.
    virtual void activated() {}
    /// As `Layer::summoned`.
    virtual bool summoned() { return false; }
    /// The controls were laid out for another size.
    virtual void sized() {}
    /// The window is being closed: what the OK of a title bar does.
    virtual void close() = 0;
    virtual void helpRequested() {}
    /// The command that leads back to the screen before, where Escape may do that.
    virtual std::optional<int> backCommand() const { return std::nullopt; }
    /// The command of a key that no control took.
    virtual std::optional<int> commandOfKey(const QKeyEvent &) const { return std::nullopt; }
    /// The menu is about to open.
    virtual void prepareMenu(ScreenMenu &) {}
};

} // namespace tidebrook
