#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace tidebrook {

/// A thin line across the screen that is shown while any work is done.
class ProgressLine : public QWidget {
    Q_OBJECT

public:
    explicit ProgressLine(QWidget *parent);

    /// One piece of work begins, or ends. The line appears after a delay.
    void begin();
    void finish();
    bool isAtWork() const { return running_ > 0; }

    /// The line shows these steps until all work ends; 0 of 0 when they are not known.
    void setSteps(int done, int all);
    int stepsDone() const { return done_; }
    int steps() const { return all_; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    int running_ = 0;
    int done_ = 0;
    int all_ = 0;
    int phase_ = 0; // of the moving bar, in per mille, while no steps are known
    QBasicTimer timer_;
};

} // namespace tidebrook
