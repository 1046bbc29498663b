#pragma once

#include <cstdint>

namespace tidebrook {

/// The part of a worker that is measured: from its construction to `end`. Everything before it,
/// such as opening the store, is outside. Under callgrind only this part is counted, on all
/// threads.
class MeasuredRegion {
public:
    MeasuredRegion();

    void end();

    /// Prints the line that the driver reads: what the region cost, and what it did.
    void print(int items, int stored) const;

private:
    double cpu_ = 0; // seconds, of all threads
    double wall_ = 0;
    std::int64_t residentBefore_ = 0; // KiB
};

} // namespace tidebrook
