#include "platform/sync/file_lock.h"

#include "platform/base/plain_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

namespace tidebrook {

namespace {

// Nothing tells when a lock is let go.
constexpr std::chrono::milliseconds lookPause(10);

bool lockInTime(int descriptor, std::optional<std::chrono::milliseconds> timeout) {
    if (!timeout)
        return lockFile(descriptor, LOCK_EX);
    const auto end = std::chrono::steady_clock::now() + *timeout;
    while (!lockFile(descriptor, LOCK_EX | LOCK_NB)) {
        if (errno != EWOULDBLOCK || std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(lookPause);
    }
    return true;
}

} // namespace

FileLock::FileLock(const QString &path, std::optional<std::chrono::milliseconds> timeout)
    : descriptor_(openPlainFile(path, O_RDWR | O_CREAT)),
      isHeld_(descriptor_ >= 0 && lockInTime(descriptor_, timeout)) {}

FileLock::~FileLock() {
    if (descriptor_ >= 0)
        close(descriptor_);
}

} // namespace tidebrook
