#include "platform/sync/stop_signal.h"

#include "platform/sync/wait_any.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>

namespace tidebrook {

StopSignal::StopSignal() : wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void StopSignal::raise() {
    const int errorBefore = errno; // a signal handler must leave it alone
    isRaised_ = true;
    eventfd_write(wakeUp_.number(), 1);
    errno = errorBefore;
}

bool StopSignal::wait(std::chrono::milliseconds timeout) const {
    if (!isRaised())
        WaitAny({}, descriptor(), timeout);
    return isRaised();
}

} // namespace tidebrook
