#pragma once

#include "kit/screen_shape.h"

#include <QList>
#include <QWidget>

namespace tidebrook {

class Layer;
class ProgressLine;

/// The window that stands for the device's screen. It shows a stack of layers, each as large as
/// itself: dialogs, of which the topmost hides all others, and message boxes above them. Only the
/// topmost layer gets keys and taps.
///
/// Closing the window asks one layer after the other to end, from the topmost down. No new layer
/// opens from then on.
class ScreenStack : public QWidget {
    Q_OBJECT

public:
    ScreenStack();

    /// Shows a layer on top of all others until it ends, and returns its result. Returns 0, and
    /// shows nothing, when the window is closing.
    int run(Layer &layer);

    Layer *top() const { return layers_.isEmpty() ? nullptr : layers_.last(); }
    bool isClosing() const { return isClosing_; }
    DialogUnits units() const { return DialogUnits(size()); }

    /// It is the lower edge of the header of the topmost dialog.
    ProgressLine &progressLine() { return *progressLine_; }

    /// Has the window's title name the topmost layer that has a title, and the program.
    void showTitle();

    /// Summons the layers from the topmost down, until one of them leads the user.
    void summon();

    /// Brings the window in front of those of other programs.
    void bringForward();

Q_SIGNALS:
    /// The user asked for help.
    void helpRequested();

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void push(Layer &layer);
    void pop(Layer &layer);
    void closeTop();
    void arrange();
    void placeProgressLine(const Layer &layer);

    QList<Layer *> layers_;
    ProgressLine *progressLine_;
    bool isClosing_ = false;
};

} // namespace tidebrook
