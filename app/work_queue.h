#pragma once

#include "platform/sync/mailbox.h"

#include <QObject>
#include <QPointer>

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <utility>

namespace tidebrook {

/// Does work that may wait (for a file, a lock, a disk) for the user-interface thread: one piece
/// after the other, in the order in which it was given, on a thread of its own. What comes of it
/// is told on the user-interface thread. Used by that thread alone.
class WorkQueue : public QObject {
    Q_OBJECT

public:
    WorkQueue();
    /// As `finish`.
    ~WorkQueue() override;

    /// Does `work`, and hands what it gives back to `then`, unless `receiver` is gone by that
    /// time. Work is values only: it must not touch a widget. False, and nothing is done, when the
    /// queue has finished or there is no thread to be had.
    template <class Work, class Then> bool ask(QObject *receiver, Work work, Then then) {
        using Result = std::invoke_result_t<Work>;
        auto result = std::make_shared<Result>();
        return post([result, work = std::move(work)] { *result = work(); }, receiver,
                    [result, then = std::move(then)] { then(std::move(*result)); });
    }

    /// Does `work`, of which nothing comes.
    bool tell(std::function<void()> work) { return post(std::move(work), nullptr, {}); }

    /// Waits until all that was given is done; nothing more is taken. What was not told by then is
    /// not told any more.
    void finish();

Q_SIGNALS:
    /// A piece of work was given, or is done. As many of the one as of the other.
    void begun();
    void done();

private:
    struct Piece {
        std::function<void()> work;
        QPointer<QObject> receiver; // looked at on the user-interface thread alone
        std::function<void()> then;
    };

    bool post(std::function<void()> work, QObject *receiver, std::function<void()> then);
    void workOff();
    void tellOf(Piece &piece);

    std::mutex mutex_; // guards these
    std::condition_variable wake_;
    std::deque<std::shared_ptr<Piece>> pieces_;
    bool isFinishing_ = false; // written by the user-interface thread alone

    Mailbox mailbox_;    // of the user-interface thread
    std::thread thread_; // begun with the first piece of work
};

} // namespace tidebrook
