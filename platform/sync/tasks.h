#pragma once

#include "platform/sync/mailbox.h"
#include "platform/sync/stop_signal.h"

#include <QObject>
#include <QPointer>

#include <atomic>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace tidebrook {

// All threads of the programs are started here, by these rules:
//
// - A thread belongs to the object that started it, whose end waits for the thread's end.
// - A thread is never broken off. Work that may take long gets a StopSignal, and ends early when
//   that is raised.
// - Work gets values and returns values, and touches no widget.
// - A result arrives on the thread of the `Tasks` that did the work, from its event loop. It is
//   dropped when its receiver is gone, its task was stopped, or the `Tasks` has finished.
// - Where no thread can be started, the call returns false and nothing is done. What was started
//   before goes on.
//
// QThreadPool and QtConcurrent drop work without notice when no thread can be started, and
// ThreadSanitizer does not see how they synchronise.

/// Threads of one owner, for work that returns nothing or reports by itself. Used by one thread.
class Threads {
public:
    /// Runs `work` on a thread of its own. False, and nothing is done, when none can be started.
    bool start(std::function<void()> work);

    /// Waits for the end of each, as the destructor does.
    void join() { threads_.clear(); }

private:
    struct Thread {
        std::atomic<bool> hasEnded = false;
        std::jthread thread; // its destructor, which waits, runs first
    };
    std::list<Thread> threads_;
};

/// Does work that may wait (for a file, a lock, a server) for a thread with an event loop, which
/// alone uses it.
class Tasks : public QObject {
    Q_OBJECT

public:
    enum Order {
        Serial,     ///< one task after another, in the order in which they were started
        Concurrent, ///< each task on a thread of its own
    };

    explicit Tasks(Order order) : isSerial_(order == Serial) {}
    /// As `finish`.
    ~Tasks() override;

    /// Runs `work`, and passes its result, where it has one, to `then` unless `receiver` is gone by
    /// that time. False, and nothing is done, when this has finished or no thread can be started.
    template <class Work, class Then> bool ask(QObject *receiver, Work work, Then then) {
        return ask(receiver, std::move(work), std::move(then), nullptr);
    }

    /// The same for work that a signal stops, which it is passed: `then` is not called once the
    /// signal is raised. Returns the signal; nullptr instead of false.
    template <class Work, class Then>
    std::shared_ptr<StopSignal> run(QObject *receiver, Work work, Then then) {
        auto stop = std::make_shared<StopSignal>();
        auto stoppable = [stop, work = std::move(work)] { return work(*stop); };
        return ask(receiver, std::move(stoppable), std::move(then), stop) ? stop : nullptr;
    }

    /// Runs `work` and reports nothing of it.
    bool tell(std::function<void()> work) { return start({std::move(work), nullptr, {}, {}}); }

    /// Has the thread of this object make a call, in order with the results of the tasks. It is
    /// dropped when this has finished. Thread-safe.
    void post(std::function<void()> call);

    /// Raises the signals of the tasks that are stopped by one, and waits for the end of every
    /// task. Nothing can be started any more.
    void finish();

Q_SIGNALS:
    /// A task was started, or has ended: as many of the one as of the other. A result is passed on
    /// behind `done`.
    void begun();
    void done();

private:
    struct Task {
        std::function<void()> work;
        QPointer<QObject> receiver; // used by the thread of the `Tasks` alone
        std::function<void()> then;
        std::shared_ptr<StopSignal> stop; // none for work that is not stopped
    };

    template <class Work, class Then>
    bool ask(QObject *receiver, Work work, Then then, std::shared_ptr<StopSignal> stop) {
        using Result = std::invoke_result_t<Work>;
        if constexpr (std::is_void_v<Result>)
            return start({std::move(work), receiver, std::move(then), std::move(stop)});
        else {
            auto result = std::make_shared<Result>();
            return start({[result, work = std::move(work)] { *result = work(); }, receiver,
                          [result, then = std::move(then)] { then(std::move(*result)); },
                          std::move(stop)});
        }
    }
    bool start(Task &&task);
    bool enqueue(const std::shared_ptr<Task> &task);
    void workOff();
    std::shared_ptr<Task> takeNext();
    void end(const std::shared_ptr<Task> &task);

    const bool isSerial_;
    bool isFinished_ = false;
    std::vector<std::shared_ptr<Task>> tasks_; // that have not ended
    Mailbox mailbox_;                          // of the thread that uses this

    std::mutex mutex_; // guards these
    std::deque<std::shared_ptr<Task>> waiting_;
    int workerCount_ = 0;

    Threads threads_;
};

} // namespace tidebrook
