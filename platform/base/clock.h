#pragma once

#include <QDateTime>

#include <chrono>

namespace tidebrook {

/// The one clock of the system, which a test can set. Thread-safe.
QDateTime utcNow();
QDateTime localNow();

/// How long the machine has been up, suspends included; setting the clock does not change it.
/// Thread-safe.
std::chrono::milliseconds uptime();

/// While it lives the clock stands at `moment`. For tests: at most one at a time.
class FixedClock {
public:
    explicit FixedClock(const QDateTime &moment);
    ~FixedClock();
    FixedClock(const FixedClock &) = delete;
    FixedClock &operator=(const FixedClock &) = delete;
};

} // namespace tidebrook
