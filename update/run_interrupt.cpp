#include "update/run_interrupt.h"

#include <sys/eventfd.h>

namespace tidebrook {

RunInterrupt::RunInterrupt() : wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void RunInterrupt::noteInput() { eventfd_write(wakeUp_.number(), 1); }

void RunInterrupt::forgetInput() {
    eventfd_t count = 0;
    eventfd_read(wakeUp_.number(), &count);
    if (isStopped()) // what was taken may have been the stop's
        eventfd_write(wakeUp_.number(), 1);
}

void RunInterrupt::stop() {
    stop_.raise();
    eventfd_write(wakeUp_.number(), 1);
}

} // namespace tidebrook
