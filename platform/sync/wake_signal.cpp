#include "platform/sync/wake_signal.h"

#include <sys/eventfd.h>

#include <cerrno>

namespace tidebrook {

WakeSignal::WakeSignal() : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void WakeSignal::raise() const {
    const int errorBefore = errno; // a signal handler must leave it alone
    eventfd_write(descriptor(), 1);
    errno = errorBefore;
}

void WakeSignal::clear() const {
    eventfd_t count = 0;
    eventfd_read(descriptor(), &count);
}

} // namespace tidebrook
