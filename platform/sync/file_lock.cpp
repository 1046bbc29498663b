#include "platform/sync/file_lock.h"

#include "platform/base/plain_file.h"

#include <QDeadlineTimer>

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <thread>

namespace tidebrook {

namespace {

// No signal comes when a lock is released.
constexpr std::chrono::milliseconds lookPause(10);

bool lockInTime(int descriptor, std::optional<std::chrono::milliseconds> timeout) {
    if (!timeout)
        return lockFile(descriptor, LOCK_EX);
    const QDeadlineTimer end(*timeout);
    while (!lockFile(descriptor, LOCK_EX | LOCK_NB)) {
        if (errno != EWOULDBLOCK || end.hasExpired())
            return false;
        std::this_thread::sleep_for(lookPause);
    }
    return true;
}

} // namespace

FileLock::FileLock(const QString &path, std::optional<std::chrono::milliseconds> timeout)
    : file_(openPlainFile(path, O_RDWR | O_CREAT)),
      isHeld_(file_.isOpen() && lockInTime(file_.number(), timeout)) {}

} // namespace tidebrook
