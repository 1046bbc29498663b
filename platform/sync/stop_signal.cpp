#include "platform/sync/stop_signal.h"

#include "platform/sync/wait_any.h"

namespace tidebrook {

void StopSignal::raise() {
    isRaised_ = true;
    wakeUp_.raise();
}

bool StopSignal::wait(std::chrono::milliseconds timeout) const {
    if (!isRaised())
        WaitAny({}, descriptor(), timeout);
    return isRaised();
}

} // namespace tidebrook
