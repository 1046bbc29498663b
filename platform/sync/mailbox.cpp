#include "platform/sync/mailbox.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace tidebrook {

namespace {

// Qt's event queue is not built with ThreadSanitizer, which does not see that it synchronises.
void handOver([[maybe_unused]] void *event) {
#ifdef __SANITIZE_THREAD__
    __tsan_release(event);
#endif
}

void takeOver([[maybe_unused]] void *event) {
#ifdef __SANITIZE_THREAD__
    __tsan_acquire(event);
#endif
}

class PostedCall : public QEvent {
public:
    explicit PostedCall(std::function<void()> call) : QEvent(kind()), call_(std::move(call)) {}
    ~PostedCall() override { takeOver(this); } // also of one that was never made
    PostedCall(const PostedCall &) = delete;
    PostedCall &operator=(const PostedCall &) = delete;

    static Type kind() {
        static const int number = registerEventType();
        return static_cast<Type>(number);
    }
    void make() const { call_(); }

private:
    std::function<void()> call_;
};

} // namespace

void Mailbox::post(std::function<void()> call) {
    auto *event = new PostedCall(std::move(call));
    handOver(event);
    QCoreApplication::postEvent(this, event);
}

bool Mailbox::event(QEvent *event) {
    takeOver(event);
    if (event->type() != PostedCall::kind())
        return QObject::event(event);
    static_cast<PostedCall *>(event)->make();
    return true;
}

} // namespace tidebrook
