#include "update/run_interrupt.h"

namespace tidebrook {

void RunInterrupt::forgetInput() {
    wakeUp_.clear();
    if (isStopped()) // what was taken may have been the stop's
        wakeUp_.raise();
}

void RunInterrupt::stop() {
    stop_.raise();
    wakeUp_.raise();
}

} // namespace tidebrook
