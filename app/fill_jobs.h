#pragma once

#include "platform/sync/named_mutex.h"
#include "platform/sync/tasks.h"

#include <QObject>
#include <QPointer>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace tidebrook {

/// What a fill asks before each row.
class FillStop {
public:
    FillStop(const std::atomic<int> &counter, const std::atomic<bool> &isFinished)
        : counter_(counter), isFinished_(isFinished) {}

    /// True once the fill is to stop; stays so.
    bool isRequested() {
        isRequested_ = isRequested_ || counter_ >= 1;
        return isRequested_ || isFinished_;
    }
    /// Whether a stop is requested, without taking it from the next fill.
    bool isPending() const { return counter_ >= 1 || isFinished_; }
    /// Whether the fill was stopped by the counter.
    bool isCounted() const { return isRequested_; }

private:
    const std::atomic<int> &counter_;
    const std::atomic<bool> &isFinished_;
    bool isRequested_ = false;
};

/// The jobs that fill a screen, each on a thread of its own, and the counter `fillStop` by which
/// screens stop them: a launch counts down, a stop request counts up, and a fill that finds it at
/// 1 or more stops and counts down. The counter is changed only under the mutex "RSSMutex".
///
/// So a fill stops only once the stop requests outnumber the launches that were not balanced, and
/// two fills of one screen may run at once: the rows of all but the newest are dropped. Used by the
/// user-interface thread alone.
class FillJobs : public QObject {
    Q_OBJECT

public:
    explicit FillJobs(NamedMutex &dbMutex);
    /// As `finish`.
    ~FillJobs() override;

    struct Fill {
        /// Collects what is to be shown, on the job's thread. It asks the stop before each row, and
        /// returns what it has when that is requested.
        std::function<void(FillStop &)> collect;
        /// Shows it, on the user-interface thread. Not called when a newer fill was asked for by
        /// the same receiver, or the receiver is gone.
        std::function<void()> show;
        /// Asks for the fill once more: it was refused for a pending stop, which is balanced now.
        std::function<void()> again;
    };

    /// Starts a fill. True also when a stop is pending, which refuses it; false when the mutex was
    /// not free within 2 seconds, or no thread can be started.
    bool launch(QObject *receiver, Fill fill);

    /// Requests a stop. Waits up to a second for the mutex, and does nothing without it.
    void requestStop();

    int fillStop() const { return fillStop_; }

    /// Stops every fill and waits for their ends. Nothing is launched any more.
    void finish();

Q_SIGNALS:
    /// A fill was started, or is done.
    void begun();
    void done();

private:
    struct Job {
        Fill fill;
        QPointer<QObject> receiver; // looked at on the user-interface thread alone
        bool isOutdated = false;
    };

    void refuse(QObject *receiver, Fill fill);
    void outdate(const QObject *receiver);
    void run(Job &job);
    void end(const std::shared_ptr<Job> &job);
    bool count(int change, std::chrono::milliseconds timeout);
    void offerAgain();

    NamedMutex &dbMutex_;
    std::atomic<int> fillStop_ = 0;
    std::vector<std::shared_ptr<Job>> jobs_;
    std::atomic<bool> isFinished_ = false;
    std::function<void()> refused_; // the `again` of a fill that was refused
    QPointer<QObject> refusedReceiver_;
    Tasks tasks_{Tasks::Concurrent};
};

} // namespace tidebrook
