#pragma once

#include "app/app_state.h"
#include "kit/header_bar.h"
#include "kit/list_view.h"
#include "kit/message_box.h"
#include "kit/screen_stack.h"
#include "platform/sync/mailbox.h"

#include <QApplication>

#include <algorithm>
#include <functional>
#include <memory>

namespace tidebrook {

/// A user before the screens. What it does is done to the real widgets, on the thread that they
/// belong to, while the user itself is on another one: so it can go on however deep the dialogs
/// lie, and see what a dialog shows while it waits for an answer.
class User {
public:
    /// Gets what the user looked for in vain, on either thread.
    using Failure = std::function<void(const QString &)>;

    User(ScreenStack &stack, Failure fail) : stack_(stack), fail_(std::move(fail)) {}

    // --- doing ---

    /// Presses a key on whatever has the focus, and lets it go on whatever has it then.
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void type(const QString &text);
    void paste(const QString &text);
    /// Puts a text in the place of all that is in the edit.
    void replace(const QString &text) {
        press(Qt::Key_A, Qt::ControlModifier);
        paste(text);
    }
    void tapRow(int row);
    void tapBelowRows();
    /// Touches a row with a finger, and moves that so many pixels down (or up) before lifting it.
    void touchRow(int row, int way = 0);
    /// Holds a finger on a row until a menu is there.
    void holdRow(int row);
    /// Clicks a row with the right button.
    void clickRight(int row);
    /// Touches an entry of the open menu or, where none is open, a button, by its text.
    void touch(const QString &text);
    /// Touches a page in its middle, and moves the finger so far before lifting it.
    void touchPage(const QPoint &way);
    void turnWheel(int steps);
    /// Taps a button by its text or, where it has none, by its name.
    void tap(const QString &buttonText);
    /// Taps the link of a page that has this text, the only such text in it.
    void tapLink(const QString &text);
    /// Opens the menu and chooses an entry; further texts lead into menus within it.
    void choose(const QStringList &path);
    /// Another program comes in front of the window, and it comes back.
    void leaveAndReturn();
    void resize(const QSize &size) {
        act([this, size] { stack_.resize(size); });
    }
    void closeWindow() {
        act([this] { stack_.close(); });
    }
    /// Does this on the screens' thread, without waiting for it.
    void act(std::function<void()> action);

    // --- seeing ---

    /// Waits until this is true, looking on the screens' thread. False when it takes too long.
    bool sees(const std::function<bool()> &condition);
    /// Does this on the screens' thread, and waits for it.
    void look(const std::function<void()> &view);

    /// The list that is to be seen, also with a box over it; nullptr without one.
    ListView *list() const;
    bool seesSelected(int row) {
        return sees([this, row] { return SelectedRow(list()) == row; });
    }
    /// An edit with this text.
    bool seesEditor(const QString &text) {
        return seesPart<QLineEdit>([&](auto &edit) { return edit.text() == text; });
    }
    bool seesNoEditor() {
        return sees([this] { return list() == nullptr || !list()->isEditingLabel(); });
    }
    /// A message box with this text and, if one is given, this subject.
    bool seesBox(const QString &text, const QString &subject = {});
    bool seesNoBox() {
        return sees([this] { return qobject_cast<MessageBox *>(stack_.top()) == nullptr; });
    }
    /// A menu, or the entries of a drop-down list.
    bool seesPopup() {
        return sees([] { return QApplication::activePopupWidget() != nullptr; });
    }
    /// A header with this caption.
    bool seesCaption(const QString &caption) { return seesSame(&User::headingNow, {caption}); }
    /// Any part of this kind, of what is on top, of which this is true.
    template <class Part> bool seesPart(const std::function<bool(const Part &)> &isRight) {
        return sees([&] {
            const auto parts =
                stack_.top() ? stack_.top()->findChildren<Part *>() : QList<Part *>();
            return std::ranges::any_of(
                parts, [&](auto *part) { return part->isVisible() && isRight(*part); });
        });
    }
    /// The header's list of all that can be chosen.
    bool seesChoices() { return seesPart<HeaderBar>(&HeaderBar::areChoicesVisible); }
    /// A page, with this text in it.
    bool seesPage(const QString &text);
    QStringList rows() { return seen(&User::rowsNow); }
    bool seesRows(const QStringList &names) { return seesSame(&User::rowsNow, names); }
    /// The rows as "LABEL: DETAIL", behind a "*" where the image is that of an unread article.
    QStringList lines() { return seen(&User::linesNow); }
    bool seesLines(const QStringList &lines) { return seesSame(&User::linesNow, lines); }
    /// The controls of the dialog that is on top, in their order: the text of an edit, buttons with
    /// "x" or "-" before their text, the entries of a drop-down list with brackets around the
    /// chosen one, the rows of a list of check boxes like buttons. "waiting" alone while it waits.
    bool seesControls(const QStringList &texts) { return seesSame(&User::controlsNow, texts); }
    /// The entries of the menu, or of one within it; "-" stands before those that cannot be
    /// chosen, "+" before checked ones. The menu is closed again.
    QStringList entries(const QString &within = {});
    /// Nothing is at work any more, or the window is closing.
    bool seesQuiet();

    ScreenStack &stack() const { return stack_; }

private:
    using Texts = QStringList (User::*)() const;
    QStringList headingNow() const;
    QStringList rowsNow() const;
    QStringList linesNow() const;
    QStringList controlsNow() const;
    QStringList seen(Texts texts);
    bool seesSame(Texts texts, const QStringList &expected);
    void touchBy(std::function<void()> action);

    ScreenStack &stack_;
    const Failure fail_;
    Mailbox mailbox_;
};

/// Turns the mouse's wheel over a list by so many steps, downward; on the screens' thread.
void turnWheelOver(ListView &list, int steps);

/// The reader's screens over a device: opened, driven by a user, and closed.
class Session {
public:
    Session(const DeviceRoot &device, const QSize &screen, User::Failure fail);
    virtual ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    AppState &state() { return *state_; }
    User &user() { return user_; }

    /// Opens the category list and has the user work. Whatever is open when the user is done is
    /// closed as by the window's own button. True when all screens ended.
    bool run(const std::function<void(User &)> &work);

protected:
    /// Shows the screens until the last one ends.
    virtual void show();

private:
    Device device_;
    ScreenStack stack_;
    User user_;
    std::unique_ptr<AppState> state_;
};

/// What a user does, to be kept in tables.
using Hand = std::function<void(User &)>;
inline Hand pressing(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    return [=](User &user) { user.press(key, modifiers); };
}
inline Hand tapping(const QString &button) {
    return [=](User &user) { user.tap(button); };
}
inline Hand choosing(const QStringList &path) {
    return [=](User &user) { user.choose(path); };
}

} // namespace tidebrook
