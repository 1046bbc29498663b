#pragma once

namespace tidebrook {

/// Wakes the service's main thread: its descriptor is readable from `raise` until `clear`.
class WakeSignal {
public:
    WakeSignal();
    ~WakeSignal();
    WakeSignal(const WakeSignal &) = delete;
    WakeSignal &operator=(const WakeSignal &) = delete;

    /// From any thread, and from a signal handler.
    void raise() const;
    void clear() const;
    int descriptor() const { return descriptor_; }

private:
    int descriptor_;
};

} // namespace tidebrook
