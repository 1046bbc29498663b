#pragma once

#include <QString>

#include <chrono>
#include <optional>

namespace tidebrook {

/// Holds a file locked against other processes, and other locks of this one, while it lives. The
/// lock ends with its holder, however that ends, and the file stays.
class FileLock {
public:
    /// Waits for the others, and, where there is a `timeout`, not longer than that.
    explicit FileLock(const QString &path,
                      std::optional<std::chrono::milliseconds> timeout = std::nullopt);
    ~FileLock();
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;

    /// False when the file could not be made, or not locked in time.
    bool isHeld() const { return isHeld_; }

private:
    int descriptor_;
    bool isHeld_;
};

} // namespace tidebrook
