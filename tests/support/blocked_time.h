#pragma once

#include "platform/descriptor.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <optional>

namespace tidebrook {

/// Tells for how long the application's thread has at most been blocked within one turn of its
/// event loops: asleep for storage, a lock or another process while events could not be taken.
/// What it computes is no part of that, nor its waiting for events or for a processor. A nested
/// loop ends the turn that it is begun in. Made and used in that thread.
class BlockedTime : public QObject {
public:
    BlockedTime() {
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

    /// Since this was made or begun anew, with the turn that is under way.
    std::chrono::nanoseconds longest() const {
        return begun_ ? std::max(longest_, asleep() - *begun_) : longest_;
    }

    /// Forgets what was, and the turn that is under way: what lies behind an outermost loop.
    void beginAnew() {
        begun_.reset();
        longest_ = {};
    }

protected:
    // Dispatchers tell that they are awake only when they have delivered what has woken them up:
    // the events of sockets and timers, or all.
    bool eventFilter(QObject * /*watched*/, QEvent * /*event*/) override {
        if (isLooking_)
            begin();
        return false;
    }

private:
    void begin() {
        isLooking_ = false;
        begun_ = asleep();
    }
    void end() {
        longest_ = longest();
        begun_.reset();
    }
    static std::chrono::nanoseconds timeOf(clockid_t clock) {
        timespec time{};
        clock_gettime(clock, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    }
    // Where the system does not tell it, a wait for a processor counts as being blocked.
    std::chrono::nanoseconds processorWait() const {
        std::array<char, 128> text{};
        if (pread(scheduling_.number(), text.data(), text.size() - 1, 0) <= 0)
            return {};
        char *second = nullptr;
        std::strtoll(text.data(), &second, 10);
        return std::chrono::nanoseconds(std::strtoll(second, nullptr, 10));
    }
    std::chrono::nanoseconds asleep() const {
        return timeOf(CLOCK_MONOTONIC) - timeOf(CLOCK_THREAD_CPUTIME_ID) - processorWait();
    }

    const Descriptor scheduling_{open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC)};
    bool isLooking_ = false;                        // for events
    std::optional<std::chrono::nanoseconds> begun_; // what `asleep` was then; unset between turns
    std::chrono::nanoseconds longest_{0};
};

} // namespace tidebrook
