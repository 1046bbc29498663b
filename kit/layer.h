#pragma once

#include <QEventLoop>
#include <QPointer>
#include <QWidget>

namespace tidebrook {

class ScreenStack;

/// A dialog or a message box on the screen stack. It fills the window.
class Layer : public QWidget {
    Q_OBJECT

public:
    explicit Layer(ScreenStack &stack);

    /// The layer that a widget is part of; null when it is in none.
    static const Layer *of(const QWidget &part);

    ScreenStack &stack() const { return stack_; }

    /// Ends the layer; the stack's `run` returns this result. Later calls are ignored.
    void end(int result);
    bool hasEnded() const { return hasEnded_; }
    int result() const { return result_; }

    /// It came to the top of the stack, or the window was activated while it was there.
    virtual void activated() {}
    /// The screens are to lead the user to a place. True when this layer does so, at once or as
    /// soon as nothing lies above it; false passes the request to the layer below.
    virtual bool summoned() { return false; }
    /// The window is being closed: the layer ends, at once or when its work is done.
    virtual void closeRequested() = 0;
    /// Whether it hides the layers below.
    virtual bool isOpaque() const = 0;
    /// The widget that gets the focus when the layer is shown first.
    virtual QWidget *firstFocus() = 0;
    /// The height of its header, whose lower edge the progress line is.
    virtual int headerUnits() const { return 0; }

    /// While something lies above it: the widget that gets the focus back afterwards.
    QWidget *focusBefore() const { return focusBefore_; }
    /// Gives the focus to a widget of the layer, or to the layer itself: at once or, while
    /// something lies above it, afterwards. Null stands for `firstFocus`.
    void giveFocus(QWidget *part);

protected:
    /// The focus stays in the layer.
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
