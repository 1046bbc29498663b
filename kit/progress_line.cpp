#include "kit/progress_line.h"

#include <QAccessible>
#include <QPainter>
#include <QTimerEvent>

namespace tidebrook {

namespace {

constexpr int delay = 150;  // ms; shorter work is not shown
constexpr int frame = 40;   // ms
constexpr int whole = 1000; // per mille
constexpr int pace = 25;
constexpr int length = 250;

} // namespace

ProgressLine::ProgressLine(QWidget *parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void ProgressLine::begin() {
    if (++running_ == 1)
        timer_.start(delay, this);
}

void ProgressLine::finish() {
    if (--running_ > 0)
        return;
    timer_.stop();
    setSteps(0, 0);
    hide();
}

void ProgressLine::setSteps(int done, int all) {
    done_ = done;
    all_ = all;
    update();
    if (QAccessible::isActive()) {
        QAccessibleValueChangeEvent event(this, done);
        QAccessible::updateAccessibility(&event);
    }
}

void ProgressLine::timerEvent(QTimerEvent *) {
    if (isHidden()) {
        phase_ = 0;
        show();
        timer_.start(frame, this);
        return;
    }
    phase_ = (phase_ + pace) % (whole + length);
    if (all_ == 0)
        update();
}

void ProgressLine::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().brush(QPalette::Mid));
    QRect bar = rect();
    if (all_ > 0) {
        bar.setWidth(width() * done_ / all_);
    } else {
        bar.setLeft(width() * (phase_ - length) / whole);
        bar.setWidth(width() * length / whole);
    }
    painter.fillRect(bar, palette().brush(QPalette::Highlight));
}

} // namespace tidebrook

#include "moc_progress_line.cpp"
