#pragma once

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <chrono>
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
        scheduling_.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
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

    /// Since this was made, with the turn that is under way.
    std::chrono::nanoseconds longest() {
        return begun_ ? std::max(longest_, asleep() - *begun_) : longest_;
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
    std::chrono::nanoseconds processorWait() {
        scheduling_.seek(0);
        return std::chrono::nanoseconds(scheduling_.read(128).split(' ').value(1).toLongLong());
    }
    std::chrono::nanoseconds asleep() {
        return timeOf(CLOCK_MONOTONIC) - timeOf(CLOCK_THREAD_CPUTIME_ID) - processorWait();
    }

    QFile scheduling_{QStringLiteral("/proc/thread-self/schedstat")};
    bool isLooking_ = false;                        // for events
    std::optional<std::chrono::nanoseconds> begun_; // what `asleep` was then; unset between turns
    std::chrono::nanoseconds longest_{0};
};

} // namespace tidebrook
