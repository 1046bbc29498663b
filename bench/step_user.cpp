#include "bench/step_user.h"

#include <QAbstractScrollArea>

#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <thread>
#include <utility>

namespace tidebrook {

StepUser::StepUser(Session &session) : state(session.state()), user(session.user()) {
    pthread_getcpuclockid(pthread_self(), &threadClock_);
    QCoreApplication::instance()->installEventFilter(this);
}

Figures StepUser::now() const {
    return {{"wall", secondsOf(CLOCK_MONOTONIC)},
            {"thread", secondsOf(threadClock_)},
            {"process", secondsOf(CLOCK_PROCESS_CPUTIME_ID)}};
}

Figures StepUser::since(const Figures &begin) const {
    Figures cost = now();
    for (auto &[name, value] : cost)
        value -= begin.at(name);
    return cost;
}

Figures StepUser::answer(const Step &step) {
    begin_ = now();
    user.act([this, isThere = step.isThere] { isThere_ = isThere; });
    step.begin(user);
    require(isPainted_.try_acquire_for(std::chrono::seconds(60)), step.name);
    return answer_;
}

Figures StepUser::measure(const Step &step) {
    const Figures begin = now();
    answer(step);
    rest();
    return since(begin);
}

void StepUser::rest(std::chrono::milliseconds quiet) {
    int before = -1;
    const auto isStill = [&] {
        const bool isBusy = !state.stack.top() || isAtWork();
        return std::exchange(before, paints_) == paints_ && !isBusy;
    };
    for (bool isOver = false; !isOver; user.look([&] { isOver = isStill(); }))
        std::this_thread::sleep_for(quiet);
}

void StepUser::await(const QString &what, const std::function<bool()> &isThere) {
    require(user.sees([&] { return isThere() && !isAtWork(); }), what);
}

void StepUser::require(bool isSo, const QString &what) {
    if (isSo)
        return;
    std::fprintf(stderr, "bench_screens: not so: %s\n", qPrintable(what));
    std::_Exit(1);
}

// It is on the screen once all is done that the event leads to that the painting is of.
bool StepUser::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() != QEvent::Paint)
        return false;
    ++paints_;
    const bool isIn = qobject_cast<QAbstractScrollArea *>(watched->parent()) != nullptr;
    if ((isIn || watched->inherits("QMenu")) && isThere_ && isThere_()) {
        isThere_ = nullptr;
        user.act([this] {
            answer_ = since(begin_);
            isPainted_.release();
        });
    }
    return false;
}

} // namespace tidebrook
