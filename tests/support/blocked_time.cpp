#include "support/blocked_time.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>

namespace tidebrook {

namespace {

using std::chrono::nanoseconds;

nanoseconds timeOf(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

/// Nothing where the system does not tell it: then a wait for a processor counts as being blocked.
nanoseconds processorWait(int scheduling) {
    std::array<char, 128> text{};
    if (pread(scheduling, text.data(), text.size() - 1, 0) <= 0)
        return {};
    char *second = nullptr;
    std::strtoll(text.data(), &second, 10);
    return nanoseconds(std::strtoll(second, nullptr, 10));
}

} // namespace

BlockedTime::BlockedTime()
    : scheduling_(open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC)) {
    const QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance();
    connect(dispatcher, &QAbstractEventDispatcher::awake, this, [this] {
        end();
        begin();
    });
    connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, [this] {
        end();
        isLooking_ = true;
    });
    QCoreApplication::instance()->installEventFilter(this);
}

// Dispatchers tell that they are awake only when they have delivered what has woken them up: the
// events of sockets and timers, or all.
bool BlockedTime::eventFilter(QObject * /*watched*/, QEvent * /*event*/) {
    if (isLooking_)
        begin();
    return false;
}

void BlockedTime::begin() {
    isLooking_ = false;
    begun_ = asleep();
}

void BlockedTime::end() {
    if (begun_)
        longest_ = std::max(longest_, asleep() - *begun_);
    begun_.reset();
}

nanoseconds BlockedTime::longest() {
    return begun_ ? std::max(longest_, asleep() - *begun_) : longest_;
}

void BlockedTime::beginAnew() {
    begun_.reset();
    longest_ = {};
}

nanoseconds BlockedTime::asleep() const {
    return timeOf(CLOCK_MONOTONIC) - timeOf(CLOCK_THREAD_CPUTIME_ID) -
           processorWait(scheduling_.number());
}

} // namespace tidebrook
