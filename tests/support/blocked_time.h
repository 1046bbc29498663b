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

    /// Since this was made, with the turn that is under way. No program can help it that programs
    /// wait for want of memory, and so none of that time counts.
    std::chrono::nanoseconds longest() { return longestTurn() - (memoryStalls() - stalledBefore_); }

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
        longest_ = longestTurn();
        begun_.reset();
    }
    std::chrono::nanoseconds longestTurn() {
        return begun_ ? std::max(longest_, asleep() - *begun_) : longest_;
    }
    /// Of all programs so far; 0 where the system does not count it.
    static std::chrono::microseconds memoryStalls() {
        QFile file(QStringLiteral("/proc/pressure/memory"));
        file.open(QIODevice::ReadOnly);
        return std::chrono::microseconds(file.readLine().split('=').last().trimmed().toLongLong());
    }
    // Where the system does not tell it, a wait for a processor counts as being blocked.
    std::chrono::nanoseconds processorWait() {
        scheduling_.seek(0);
        return std::chrono::nanoseconds(scheduling_.read(128).split(' ').value(1).toLongLong());
    }
    std::chrono::nanoseconds asleep() {
        timespec computed{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &computed);
        return std::chrono::steady_clock::now().time_since_epoch() - processorWait() -
               std::chrono::seconds(computed.tv_sec) - std::chrono::nanoseconds(computed.tv_nsec);
    }

    QFile scheduling_{QStringLiteral("/proc/thread-self/schedstat")};
    const std::chrono::microseconds stalledBefore_ = memoryStalls();
    bool isLooking_ = false;                        // for events
    std::optional<std::chrono::nanoseconds> begun_; // what `asleep` was then; unset between turns
    std::chrono::nanoseconds longest_{0};
};

} // namespace tidebrook
