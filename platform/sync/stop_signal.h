#pragma once

#include "platform/sync/wake_signal.h"

#include <atomic>
#include <chrono>

namespace tidebrook {

/// Has any number of threads of this process end. Once raised it stays so. Thread-safe.
class StopSignal {
public:
    /// May be called in a signal handler.
    void raise();
    bool isRaised() const { return isRaised_; }

    /// Waits until it is raised, and no longer than `timeout`. True when it is raised.
    bool wait(std::chrono::milliseconds timeout) const;

    /// For waiting together with other descriptors: readable once it is raised. Never read it.
    /// Negative when the process has no descriptor left; then no waiting thread is woken, but
    /// `isRaised` still holds.
    int descriptor() const { return wakeUp_.descriptor(); }

private:
    static_assert(std::atomic<bool>::is_always_lock_free);
    std::atomic<bool> isRaised_ = false;
    const WakeSignal wakeUp_;
};

} // namespace tidebrook
