#include "platform/sync/process_lock.h"

#include "platform/base/descriptor.h"
#include "platform/base/plain_file.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <mutex>
#include <vector>

namespace tidebrook {

namespace {

struct HeldFile {
    dev_t device;
    ino_t number;
    pid_t process; // in a forked child the entries are there, and the locks are not
    int descriptor;
};

/// The files that this process holds. None of them may be opened again, because the first
/// descriptor to be closed gives up the lock; so the mutex is held while files are opened and
/// closed.
struct HeldFiles {
    std::mutex mutex;
    std::vector<HeldFile> files;

    bool contains(const QString &path) const {
        struct stat status {};
        if (stat(QFile::encodeName(path).constData(), &status) != 0)
            return false;
        return std::any_of(files.begin(), files.end(), [&](const HeldFile &file) {
            return file.device == status.st_dev && file.number == status.st_ino &&
                   file.process == getpid();
        });
    }
};

HeldFiles &heldFiles() {
    static HeldFiles held;
    return held;
}

struct flock wholeFile() {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

/// The descriptor of the file that is locked now, or -1.
int take(const QString &path) {
    HeldFiles &held = heldFiles();
    const std::scoped_lock lock(held.mutex);
    if (held.contains(path))
        return -1;
    const int descriptor = openPlainFile(path, O_RDWR | O_CREAT);
    if (descriptor < 0)
        return -1;
    const struct flock whole = wholeFile();
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || fcntl(descriptor, F_SETLK, &whole) != 0) {
        close(descriptor);
        return -1;
    }
    held.files.push_back({status.st_dev, status.st_ino, getpid(), descriptor});
    return descriptor;
}

} // namespace

ProcessLock::ProcessLock(const QString &path) : descriptor_(take(path)) {}

ProcessLock::~ProcessLock() {
    if (!isHeld())
        return;
    HeldFiles &held = heldFiles();
    const std::scoped_lock lock(held.mutex);
    std::erase_if(held.files,
                  [this](const HeldFile &file) { return file.descriptor == descriptor_; });
    close(descriptor_);
}

std::optional<pid_t> ProcessLock::holder(const QString &path) {
    HeldFiles &held = heldFiles();
    const std::scoped_lock lock(held.mutex);
    if (held.contains(path))
        return getpid();
    const Descriptor file(openPlainFile(path, O_RDONLY));
    struct flock whole = wholeFile();
    if (!file.isOpen() || fcntl(file.number(), F_GETLK, &whole) != 0 || whole.l_type == F_UNLCK)
        return std::nullopt;
    return whole.l_pid;
}

} // namespace tidebrook
