#include "service/wake_signal.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>

namespace tidebrook {

WakeSignal::WakeSignal() : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

WakeSignal::~WakeSignal() { close(descriptor_); }

void WakeSignal::raise() const {
    const int kept = errno; // a signal handler must not change it
    eventfd_write(descriptor_, 1);
    errno = kept;
}

void WakeSignal::clear() const {
    eventfd_t count = 0;
    eventfd_read(descriptor_, &count);
}

} // namespace tidebrook
