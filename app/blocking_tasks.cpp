#include "app/blocking_tasks.h"

#include <system_error>

namespace tidebrook {

BlockingTasks::~BlockingTasks() { finish(); }

std::shared_ptr<StopSignal> BlockingTasks::start(QObject *receiver,
                                                 std::function<void(const StopSignal &)> work,
                                                 std::function<void()> then) {
    if (isFinished_)
        return nullptr;
    auto task = std::make_shared<Task>();
    task->work = std::move(work);
    task->receiver = receiver;
    task->then = std::move(then);
    try {
        task->thread = std::thread([this, task] {
            task->work(*task->stop);
            task->work = nullptr;
            mailbox_.post([this, task] { end(task); });
        });
    } catch (const std::system_error &) {
        return nullptr;
    }
    tasks_.push_back(task);
    Q_EMIT begun();
    return task->stop;
}

void BlockingTasks::end(const std::shared_ptr<Task> &task) {
    if (std::erase(tasks_, task) == 0)
        return; // `finish` has waited for it
    task->thread.join();
    Q_EMIT done();
    if (!task->stop->isRaised() && !task->receiver.isNull())
        task->then();
}

void BlockingTasks::finish() {
    isFinished_ = true;
    for (const std::shared_ptr<Task> &task : tasks_)
        task->stop->raise();
    for (const std::shared_ptr<Task> &task : std::exchange(tasks_, {})) {
        task->thread.join();
        Q_EMIT done();
    }
}

} // namespace tidebrook
