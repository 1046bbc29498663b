#pragma once

#include "platform/base/descriptor.h"

#include <QString>

#include <chrono>
#include <optional>

namespace tidebrook {

/// Holds a file locked against other processes, and other locks of this one, while it lives. The
/// lock ends with its holder, however that ends, and the file stays. It is for work of several
/// steps: no thread owns it, unlike a `NamedMutex`, and it can be waited for, unlike a
/// `ProcessLock`.
class FileLock {
public:
    /// Waits for the others, and, where there is a `timeout`, not longer than that.
    explicit FileLock(const QString &path,
                      std::optional<std::chrono::milliseconds> timeout = std::nullopt);

    /// False when the file could not be made, or not locked in time.
    bool isHeld() const { return isHeld_; }

private:
    const Descriptor file_;
    const bool isHeld_;
};

} // namespace tidebrook
