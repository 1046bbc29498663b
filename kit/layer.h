#pragma once

#include <QEventLoop>
#include <QPointer>
#include <QWidget>

namespace tidebrook {

class ScreenStack;

/// What lies on the screen stack: a dialog or a message box. It fills the window.
class Layer : public QWidget {
    Q_OBJECT

public:
    explicit Layer(ScreenStack &stack);

    ScreenStack &stack() const { return stack_; }

    /// Ends the layer; the stack's `run` gives back this result. The first result stands.
    void end(int result);
    bool hasEnded() const { return hasEnded_; }
    int result() const { return result_; }

    /// It came to the top of the stack, or the window became the active one while it was there.
    virtual void activated() {}
    /// There is something that the screens are to lead the user to. True when this one does so, at
    /// once or as soon as nothing lies above it; false leaves it to the layer below.
    virtual bool summoned() { return false; }
    /// The window is being closed: the layer is to end, now or when what it must finish is done.
    virtual void closeRequested() = 0;
    /// Whether nothing below it is seen.
    virtual bool isOpaque() const = 0;
    /// The widget that has the focus when nothing of the layer had it before.
    virtual QWidget *firstFocus() = 0;
    /// How much of its upper end is a header; the progress line lies under that.
    virtual int headerUnits() const { return 0; }

protected:
    /// The focus goes round in the layer: what lies below it is out of reach.
    bool focusNextPrevChild(bool next) override;

private:
    friend class ScreenStack;

    ScreenStack &stack_;
    QEventLoop loop_;
    QPointer<QWidget> focusBefore_; // while something lies above this
    bool hasEnded_ = false;
    int result_ = 0;
};

} // namespace tidebrook
