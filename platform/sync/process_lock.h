#pragma once

#include <QString>

#include <sys/types.h>

#include <optional>

namespace tidebrook {

/// Holds a file for this process while it lives; it never waits. The lock ends with the process,
/// however that ends, and the file, which is made when it is missing, stays. It marks a running
/// program: alone of the locks it says which process holds it.
///
/// A forked child does not inherit the lock: a process that goes into the background takes it
/// after its last fork. While the lock is held, nothing but this class may open its file in this
/// process, because closing the file anywhere gives up the lock.
class ProcessLock {
public:
    explicit ProcessLock(const QString &path);
    ~ProcessLock();
    ProcessLock(const ProcessLock &) = delete;
    ProcessLock &operator=(const ProcessLock &) = delete;

    /// False when another process holds the file, or another lock of this one, or when it could
    /// not be made.
    bool isHeld() const { return descriptor_ >= 0; }

    /// The living process that holds the file, which may be this one. Thread-safe.
    static std::optional<pid_t> holder(const QString &path);

private:
    const int descriptor_;
};

} // namespace tidebrook
