#pragma once

#include "today/today_state.h"

#include <QAbstractButton>
#include <QBasicTimer>

#include <optional>

namespace tidebrook {

/// A line with the number of unread articles and one headline after another. It steps by itself
/// while it is asked to, and not while a pointer or a finger is on it; by hand with the arrow keys,
/// the wheel and a sideways finger. A click, a tap or Enter is `clicked`.
class HeadlineStrip : public QAbstractButton {
    Q_OBJECT

public:
    HeadlineStrip();

    /// The headline that was shown stays where it still is one.
    void setState(const TodayState &state);

    /// Whether it steps by itself. At first it does not.
    void setStepping(bool isStepping);

    /// Shows this text for some seconds, in the headline's place.
    void showNote(const QString &text);

    /// The headline that is shown, if one is.
    std::optional<Headline> headline() const;

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The menu is wanted, at this place of the screen.
    void menuWanted(const QPoint &position);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void step(int by);
    void wantMenu(const QPoint &position);
    void updateText();
    void updateStepping();
    QString message() const;

    TodayState state_;
    qsizetype shown_ = 0; // index of the headline
    QString note_;
    bool isStepping_ = false;
    int turned_ = 0;                // eighths of a degree of the wheel
    std::optional<QPoint> pressed_; // where, until the press has become something else
    QBasicTimer step_;
    QBasicTimer hold_; // until a press is a long one
    QBasicTimer noteEnd_;
};

} // namespace tidebrook
