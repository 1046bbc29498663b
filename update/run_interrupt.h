#pragma once

#include "platform/sync/stop_signal.h"
#include "platform/sync/wake_signal.h"

namespace tidebrook {

/// What ends a wait of an update run before its time: input of the user, which lasts until it is
/// forgotten, and the stop, which lasts for good. Thread-safe.
class RunInterrupt {
public:
    void noteInput() { wakeUp_.raise(); }
    /// What the user did so far is no input any more. A stop stays.
    void forgetInput();

    void stop();
    bool isStopped() const { return stop_.isRaised(); }
    /// For what only a stop is to end.
    const StopSignal &stopSignal() const { return stop_; }

    /// As WaitAny takes it: readable while there is input, and from a stop on. Never read it.
    /// Negative when the process has no descriptor left; then no waiting thread is woken.
    int descriptor() const { return wakeUp_.descriptor(); }

private:
    StopSignal stop_;
    const WakeSignal wakeUp_;
};

} // namespace tidebrook
