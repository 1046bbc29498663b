#pragma once

#include <QDateTime>

#include <chrono>

namespace tidebrook {

/// The one clock of the system: every date and every age is read from here, so that a test can
/// put the whole system at another moment. Thread-safe.
QDateTime utcNow();
QDateTime localNow();

/// How long the machine has been up, suspends included: it goes on evenly, whatever the clock is
/// set to. Thread-safe.
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
