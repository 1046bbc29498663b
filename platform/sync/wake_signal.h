#pragma once

#include "platform/base/descriptor.h"

namespace tidebrook {

/// Wakes a thread that polls: its descriptor is readable from `raise` until `clear`. Thread-safe.
class WakeSignal {
public:
    WakeSignal();

    /// May be called in a signal handler.
    void raise() const;
    void clear() const;

    /// Never read it. Negative when the process has no descriptor left; then no thread is woken.
    int descriptor() const { return descriptor_.number(); }

private:
    const Descriptor descriptor_;
};

} // namespace tidebrook
