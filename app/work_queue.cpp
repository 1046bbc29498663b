#include "app/work_queue.h"

#include <system_error>

namespace tidebrook {

WorkQueue::WorkQueue() = default;

WorkQueue::~WorkQueue() { finish(); }

bool WorkQueue::post(std::function<void()> work, QObject *receiver, std::function<void()> then) {
    {
        const std::lock_guard guard(mutex_);
        if (isFinishing_)
            return false;
        pieces_.push_back(
            std::make_shared<Piece>(Piece{std::move(work), receiver, std::move(then)}));
    }
    if (!thread_.joinable()) {
        try {
            thread_ = std::thread(&WorkQueue::workOff, this);
        } catch (const std::system_error &) {
            const std::lock_guard guard(mutex_);
            pieces_.clear();
            return false;
        }
    }
    wake_.notify_one();
    Q_EMIT begun();
    return true;
}

void WorkQueue::workOff() {
    std::unique_lock guard(mutex_);
    while (true) {
        wake_.wait(guard, [this] { return isFinishing_ || !pieces_.empty(); });
        if (pieces_.empty())
            return;
        std::shared_ptr<Piece> piece = std::move(pieces_.front());
        pieces_.pop_front();
        guard.unlock();
        piece->work();
        piece->work = nullptr;
        // Handed over whole: what `then` holds belongs to the other thread.
        mailbox_.post([this, piece = std::move(piece)] { tellOf(*piece); });
        guard.lock();
    }
}

void WorkQueue::tellOf(Piece &piece) {
    Q_EMIT done();
    if (!isFinishing_ && piece.then && !piece.receiver.isNull())
        piece.then();
}

void WorkQueue::finish() {
    {
        const std::lock_guard guard(mutex_);
        isFinishing_ = true;
    }
    wake_.notify_one();
    if (thread_.joinable())
        thread_.join();
}

} // namespace tidebrook
