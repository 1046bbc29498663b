#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace tidebrook {

/// A thin line across the screen that is there while something is at work.
class ProgressLine : public QWidget {
    Q_OBJECT

public:
    explicit ProgressLine(QWidget *parent);

    /// One more, or one less, is at work. The line appears only if it goes on for a while.
    void begin();
    void finish();
    bool isAtWork() const { return running_ > 0; }

    /// So many steps of so many are done; the line then shows them as long as something is at
    /// work. 0 of 0 when that is not known.
    void setSteps(int done, int all);

protected:
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    int running_ = 0;
    int done_ = 0;
    int all_ = 0;
    int phase_ = 0; // per mille of the way of what moves while no steps are known
    QBasicTimer timer_;
};

} // namespace tidebrook
