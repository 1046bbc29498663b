#pragma once

#include "platform/sync/mailbox.h"
#include "platform/sync/stop_signal.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace tidebrook {

/// Does what may wait long, for a server or a disk, and concerns nothing else that is at work:
/// each task on a thread of its own. What comes of it is told on the user-interface thread. Used
/// by that thread alone.
class BlockingTasks : public QObject {
    Q_OBJECT

public:
    /// As `finish`.
    ~BlockingTasks() override;

    /// Does `work`, and hands what it gives back to `then`, unless `receiver` is gone by that
    /// time. Work is values only: it must not touch a widget. What is given back calls the task
    /// off when it is raised: nothing is told of it any more, and work that looks at the signal
    /// ends early. nullptr, and nothing is done, when this has finished or there is no thread to
    /// be had.
    template <class Work, class Then>
    std::shared_ptr<StopSignal> run(QObject *receiver, Work work, Then then) {
        using Result = std::invoke_result_t<Work, const StopSignal &>;
        auto result = std::make_shared<Result>();
        return start(
            receiver,
            [result, work = std::move(work)](const StopSignal &stop) { *result = work(stop); },
            [result, then = std::move(then)] { then(std::move(*result)); });
    }

    /// Calls off all tasks and waits for their ends. Nothing is begun any more.
    void finish();

Q_SIGNALS:
    /// A task was begun, or is done. As many of the one as of the other.
    void begun();
    void done();

private:
    struct Task {
        std::function<void(const StopSignal &)> work;
        QPointer<QObject> receiver; // looked at on the user-interface thread alone
        std::function<void()> then;
        std::shared_ptr<StopSignal> stop = std::make_shared<StopSignal>();
        std::thread thread;
    };

    std::shared_ptr<StopSignal> start(QObject *receiver,
                                      std::function<void(const StopSignal &)> work,
                                      std::function<void()> then);
    void end(const std::shared_ptr<Task> &task);

    Mailbox mailbox_; // of the user-interface thread
    std::vector<std::shared_ptr<Task>> tasks_;
    bool isFinished_ = false;
};

} // namespace tidebrook
