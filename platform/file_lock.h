#pragma once

#include <QString>

namespace tidebrook {

/// Holds a file locked against other processes, and other locks of this one, while it lives; it
/// waits for them. The lock ends with its holder, however that ends, and the file stays.
class FileLock {
public:
    explicit FileLock(const QString &path);
    ~FileLock();
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;

    /// False when the file could not be made or locked.
    bool isHeld() const { return isHeld_; }

private:
    int descriptor_;
    bool isHeld_;
};

} // namespace tidebrook
