#pragma once

#include "kit/layer.h"

#include <QString>

class QFrame;
class QLabel;
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

    /// The subject, if there is one, is the name of what the text is about. It is shown as plain
    /// text on lines of its own, elided where a few do not hold it, and the box leaves the selected
    /// row below it free if it can.
    MessageBox(ScreenStack &stack, Kind kind, const QString &caption, const QString &text,
               const QString &subject = {});

    /// Shows the box until it is answered. True for OK and Yes; false also when the window closes.
    static bool ask(ScreenStack &stack, Kind kind, const QString &caption, const QString &text,
                    const QString &subject = {});

    void closeRequested() override { end(0); }
    bool isOpaque() const override { return false; }
    QWidget *firstFocus() override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void wrapSubject(int width);

    const QString subject_;
    QPushButton *default_ = nullptr;
    QFrame *frame_;
    QLabel *subjectLabel_;
};

} // namespace tidebrook
