#pragma once

#include "kit/form.h"
#include "kit/layer.h"
#include "res/ids.h"

namespace tidebrook {

class DialogProcedure;
class HeaderBar;
class MenuBar;

/// A screen or dialog: the controls of a template over the whole screen, and, where its procedure
/// asks for them, a header bar above and a menu bar below. When the screen turns it takes its
/// places from the template of the other orientation.
class Dialog : public Layer {
    Q_OBJECT

public:
    /// `templateId` is the portrait one. The procedure outlives the dialog.
    Dialog(int templateId, ScreenStack &stack, DialogProcedure &procedure);

    Form &form() const { return *form_; }
    template <class Widget> Widget *control(int id) const { return form_->control<Widget>(id); }

    /// Sends a command to the procedure, never before the present event is done with, nor while
    /// something lies above the dialog; then once, however often it was posted meanwhile. One that
    /// is still waiting when the dialog ends is forgotten.
    void post(int command);
    /// The same for a command that the user gave. It was not meant for what lies above the dialog
    /// by then, if anything does, nor for what the dialog shows afterwards: then it is forgotten.
    void choose(int command);

    bool makeMenuBar(MenuBarId id);
    /// nullptr before that.
    MenuBar *menuBar() const { return menuBar_; }

    HeaderBar &makeHeaderBar(const QString &caption);
    /// Nothing but the caption, over the title strip alone.
    void makeTitleStrip(const QString &caption);
    /// The line under the title label that some templates have.
    void makeTitleLine();
    HeaderBar *headerBar() const { return headerBar_; }

    /// The control that has the focus at first: the first that takes it unless told.
    void setFirstFocus(QWidget *control) { firstFocus_ = control; }

    /// Lays everything out for the size of the window, as when that changes.
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
    bool isOnTop() const;
    void goBack();

    const int templateId_;
    DialogProcedure &procedure_;
    Form *form_;
    MenuBar *menuBar_ = nullptr;
    HeaderBar *headerBar_ = nullptr;
    int headerUnits_ = titleStripUnits + headerBarUnits;
    bool hasTitleLine_ = false;
    QWidget *firstFocus_ = nullptr;
    QList<int> waiting_; // posted while something lay above
};

/// Opens a dialog by the id of its portrait template, on top of whatever the stack shows, and
/// gives back the result that it ends with. -1 when there is no such template, or when the
/// procedure could not set it up.
int RunDialog(int templateId, ScreenStack &stack, DialogProcedure &procedure);

} // namespace tidebrook
