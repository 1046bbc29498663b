#pragma once

#include "kit/form.h"
#include "kit/layer.h"
#include "res/ids.h"

#include <QHash>

namespace tidebrook {

class DialogProcedure;
class HeaderBar;
class MenuBar;

/// A screen or dialog: the controls of a template over the whole screen, between a header bar and
/// a menu bar. When the screen turns, it is laid out by the template of the other orientation.
class Dialog : public Layer {
    Q_OBJECT

public:
    /// The procedure outlives the dialog.
    Dialog(int templateId, ScreenStack &stack, DialogProcedure &procedure);

    Form &form() const { return *form_; }
    template <class Widget> Widget *control(int id) const { return form_->control<Widget>(id); }

    /// Sends a command to the procedure after the present event. While another layer lies above
    /// the dialog the command waits, once, however often it is posted. A command that still waits
    /// when the dialog ends is dropped.
    void post(int command);
    /// The same for a command of the user, which is dropped while another layer lies above.
    void choose(int command);

    void makeMenuBar(MenuBarId id);
    /// nullptr before that.
    MenuBar *menuBar() const { return menuBar_; }

    HeaderBar *headerBar() const { return headerBar_; }
    /// Names what is open, in the header bar and in the window's title.
    void setTitle(const QString &title);
    /// Lowers the header bar to the title strip, and names the program in it.
    void useTitleStrip();
    /// Draws the line under the title label that some templates have.
    void drawTitleLine();

    /// Chooses a command by a key that no control takes: with these modifiers or, where none are
    /// given, with any. Nothing happens while the menu bar has the command disabled.
    void setKey(QKeyCombination key, int command) { keys_[key.toCombined()] = command; }
    void setEnterKeys(int command);
    void setBackKeys(int command);

    /// By default the first control that takes the focus has it at first.
    void setFirstFocus(QWidget *control) { firstFocus_ = control; }

    /// Lays everything out for the size of the window.
    void relayout();

    void activated() override;
    bool summoned() override;
    void closeRequested() override;
    bool isOpaque() const override { return true; }
    QWidget *firstFocus() override;
    int headerUnits() const override { return headerUnits_; }

protected:
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool send(int command);

    const int templateId_;
    DialogProcedure &procedure_;
    Form *form_;
    HeaderBar *headerBar_;
    MenuBar *menuBar_ = nullptr;
    int headerUnits_ = titleStripUnits + headerBarUnits;
    bool hasTitleLine_ = false;
    QWidget *firstFocus_ = nullptr;
    QHash<int, int> keys_; // the command of each combination
    QList<int> waiting_;   // commands that were posted while another layer lay above
};

/// Opens a dialog by the id of its portrait template on top of the stack, and returns the result
/// that it ends with; 0 when the window is closing.
int RunDialog(int templateId, ScreenStack &stack, DialogProcedure &procedure);

} // namespace tidebrook
