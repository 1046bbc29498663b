#include "platform/base/clock.h"

#include <atomic>
#include <ctime>
#include <limits>

namespace tidebrook {

namespace {

constexpr qint64 running = std::numeric_limits<qint64>::min();
std::atomic<qint64> fixedMsecs = running;

} // namespace

QDateTime utcNow() {
    const qint64 fixed = fixedMsecs;
    return fixed == running ? QDateTime::currentDateTimeUtc()
                            : QDateTime::fromMSecsSinceEpoch(fixed, Qt::UTC);
}

QDateTime localNow() { return utcNow().toLocalTime(); }

std::chrono::milliseconds uptime() {
    timespec time{};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

FixedClock::FixedClock(const QDateTime &moment) { fixedMsecs = moment.toMSecsSinceEpoch(); }

FixedClock::~FixedClock() { fixedMsecs = running; }

} // namespace tidebrook
