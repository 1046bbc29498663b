#pragma once

#include <QSet>
#include <QString>

#include <sys/types.h>

#include <array>

namespace tidebrook {

// What the system tells of a running process. All throw MeasurementError when there is none.

/// In KiB.
struct Memory {
    double proportional = 0; ///< Pss: what it shares is divided by all who share it
    double alone = 0;        ///< what the Pss would be if the two processes were the only ones
    double resident = 0;     ///< Rss: what it shares counts whole
    double anonymous = 0;    ///< of that, what belongs to no file
};

/// Of two processes at the same moment.
std::array<Memory, 2> memoryOf(pid_t one, pid_t other);

/// The files that it has mapped, and the shared objects among them.
QSet<QString> filesOf(pid_t process);
QSet<QString> librariesOf(pid_t process);

/// How often its threads have gone to sleep. Those that have ended no longer count.
qint64 sleepsOf(pid_t process);

/// Waits until it has done nothing for a while.
void awaitIdle(pid_t process);

} // namespace tidebrook
