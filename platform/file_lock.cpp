#include "platform/file_lock.h"

#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace tidebrook {

namespace {

bool lockWhole(int descriptor) {
    int result = flock(descriptor, LOCK_EX);
    while (result != 0 && errno == EINTR)
        result = flock(descriptor, LOCK_EX);
    return result == 0;
}

} // namespace

FileLock::FileLock(const QString &path)
    : descriptor_(open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)),
      isHeld_(descriptor_ >= 0 && lockWhole(descriptor_)) {}

FileLock::~FileLock() {
    if (descriptor_ >= 0)
        close(descriptor_);
}

} // namespace tidebrook
