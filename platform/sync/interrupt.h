#pragma once

#include "platform/sync/stop_signal.h"
#include "platform/sync/wake_signal.h"

#include <array>
#include <csignal>

namespace tidebrook {

/// Ends a thread's wait before its time: by waking it, which lasts until it is cleared, or by a
/// stop, which lasts for good. Thread-safe.
class Interrupt {
public:
    void wake() { wakeUp_.raise(); }
    /// Forgets that it was woken. A stop stays.
    void clear();

    /// May be called in a signal handler.
    void stop();
    bool isStopped() const { return stop_.isRaised(); }
    /// For what only a stop is to end.
    const StopSignal &stopSignal() const { return stop_; }

    /// As WaitAny takes it: readable while it is woken, and from a stop on. Never read it.
    /// Negative when the process has no descriptor left; then no waiting thread is woken.
    int descriptor() const { return wakeUp_.descriptor(); }

private:
    StopSignal stop_;
    const WakeSignal wakeUp_;
};

/// While it lives, SIGTERM, SIGINT and SIGHUP stop an interrupt instead of ending the program.
/// Those that were ignored, as by nohup, stay so. One at a time.
class TerminationSignals {
public:
    explicit TerminationSignals(Interrupt &interrupt);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals &) = delete;
    TerminationSignals &operator=(const TerminationSignals &) = delete;

private:
    static constexpr std::array numbers{SIGTERM, SIGINT, SIGHUP};
    std::array<struct sigaction, numbers.size()> before_{};
};

} // namespace tidebrook
