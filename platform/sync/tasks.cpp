#include "platform/sync/tasks.h"

#include <system_error>

namespace tidebrook {

bool Threads::start(std::function<void()> work) {
    threads_.remove_if([](const Thread &thread) { return thread.hasEnded.load(); });
    Thread &thread = threads_.emplace_back();
    try {
        thread.thread = std::jthread([&thread, work = std::move(work)] {
            work();
            thread.hasEnded = true;
        });
    } catch (const std::system_error &) {
        threads_.pop_back();
        return false;
    }
    return true;
}

Tasks::~Tasks() { finish(); }

bool Tasks::start(Task &&task) {
    const auto started = std::make_shared<Task>(std::move(task));
    if (isFinished_ || !enqueue(started))
        return false;
    tasks_.push_back(started);
    Q_EMIT begun();
    return true;
}

bool Tasks::enqueue(const std::shared_ptr<Task> &task) {
    const std::lock_guard guard(mutex_);
    if (!isSerial_ || workerCount_ == 0) {
        if (!threads_.start([this] { workOff(); }))
            return false;
        ++workerCount_;
    }
    waiting_.push_back(task);
    return true;
}

void Tasks::workOff() {
    while (std::shared_ptr<Task> task = takeNext()) {
        task->work();
        task->work = nullptr;
        // Handed over whole: what `then` holds belongs to the other thread.
        mailbox_.post([this, task = std::move(task)] { end(task); });
    }
}

std::shared_ptr<Tasks::Task> Tasks::takeNext() {
    const std::lock_guard guard(mutex_);
    if (waiting_.empty()) {
        --workerCount_;
        return nullptr;
    }
    std::shared_ptr<Task> task = std::move(waiting_.front());
    waiting_.pop_front();
    return task;
}

void Tasks::end(const std::shared_ptr<Task> &task) {
    if (std::erase(tasks_, task) == 0)
        return; // `finish` has waited for it
    Q_EMIT done();
    const bool isStopped = task->stop && task->stop->isRaised();
    if (!isFinished_ && !isStopped && !task->receiver.isNull())
        task->then();
}

void Tasks::post(std::function<void()> call) {
    mailbox_.post([this, call = std::move(call)] {
        if (!isFinished_)
            call();
    });
}

void Tasks::finish() {
    isFinished_ = true;
    for (const std::shared_ptr<Task> &task : tasks_) {
        if (task->stop)
            task->stop->raise();
    }
    threads_.join();
    for (; !tasks_.empty(); tasks_.pop_back())
        Q_EMIT done();
}

} // namespace tidebrook

#include "moc_tasks.cpp"
