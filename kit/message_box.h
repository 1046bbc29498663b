#pragma once

#include "kit/layer.h"

#include <QString>

class QFrame;
class QPushButton;

namespace tidebrook {

/// A message or a question in the middle of the screen, over the dimmed layer below.
class MessageBox : public Layer {
    Q_OBJECT

public:
    enum class Kind : quint8 {
        Warning,  ///< OK
        Error,    ///< OK
        Question, ///< Yes or No; Enter and Escape choose No
    };

    MessageBox(ScreenStack &stack, Kind kind, const QString &caption, const QString &text);

    /// Shows the box until it is answered. True for OK and Yes; false also when the window closes.
    static bool ask(ScreenStack &stack, Kind kind, const QString &caption, const QString &text);

    void closeRequested() override { end(0); }
    bool isOpaque() const override { return false; }
    QWidget *firstFocus() override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QPushButton *default_ = nullptr;
    QFrame *frame_;
};

} // namespace tidebrook
