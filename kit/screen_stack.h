#pragma once

#include "kit/screen_shape.h"

#include <QList>
#include <QWidget>

namespace tidebrook {

class InputPanel;
class Layer;
class ProgressLine;

/// The window that stands for the device's screen. It shows a stack of layers, each as large as
/// itself: dialogs, of which the topmost hides all others, and message boxes above them. Only the
/// topmost layer gets keys and taps.
///
/// Closing the window asks the topmost layer to end, then the one below it, and so on outward.
/// From then on no new layer opens.
class ScreenStack : public QWidget {
    Q_OBJECT

public:
    ScreenStack();
    ~ScreenStack() override;

    /// Shows a layer on top of all others until it ends; gives back the result that it ended
    /// with. When the window is closing the layer is not shown and 0 is given back.
    int run(Layer &layer);

    Layer *top() const { return layers_.isEmpty() ? nullptr : layers_.last(); }
    bool isClosing() const { return isClosing_; }
    DialogUnits units() const { return DialogUnits(size()); }

    /// Shows that something is at work, under the header of whatever is on top.
    ProgressLine &progressLine() { return *progressLine_; }
    InputPanel &inputPanel() { return *inputPanel_; }

    /// Summons the layers from the topmost down, until one of them leads the user.
    void summon();

    /// Brings the window in front of those of other programs, whatever it is showing.
    void bringForward();

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void push(Layer &layer);
    void pop(Layer &layer);
    void closeTop();
    void arrange();
    void placeProgressLine(const Layer &layer);

    QList<Layer *> layers_;
    ProgressLine *progressLine_;
    InputPanel *inputPanel_;
    bool isClosing_ = false;
};

} // namespace tidebrook
