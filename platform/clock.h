#pragma once

#include <QDateTime>

namespace tidebrook {

/// The one clock of the system: every date and every age is read from here, so that a test can
/// put the whole system at another moment. Thread-safe.
QDateTime utcNow();
QDateTime localNow();

/// While it lives the clock stands at `moment`. For tests: at most one at a time.
class FixedClock {
public:
    explicit FixedClock(const QDateTime &moment);
    ~FixedClock();
    FixedClock(const FixedClock &) = delete;
    FixedClock &operator=(const FixedClock &) = delete;
};

} // namespace tidebrook
