#include "platform/base/plain_file.h"

#include "platform/base/descriptor.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>

namespace tidebrook {

FileKind fileKindAt(const QString &path, Links links) {
    const QByteArray name = QFile::encodeName(path);
    struct stat status {};
    if (lstat(name.constData(), &status) != 0)
        return errno == ENOENT ? FileKind::Missing : FileKind::Other;
    const bool isKnown = links == Links::Refused || stat(name.constData(), &status) == 0;
    return isKnown && S_ISREG(status.st_mode) ? FileKind::Plain : FileKind::Other;
}

int openPlainFile(const QString &path, int flags, Links links) {
    const int careful = O_CLOEXEC | O_NONBLOCK | (links == Links::Refused ? O_NOFOLLOW : 0);
    const int descriptor = open(QFile::encodeName(path).constData(), flags | careful, 0600);
    struct stat status {};
    if (descriptor < 0 || (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)))
        return descriptor;
    close(descriptor);
    errno = EINVAL;
    return -1;
}

std::optional<QByteArray> readPlainFile(const QString &path, qint64 limit, Links links) {
    const int descriptor = openPlainFile(path, O_RDONLY, links);
    QFile file;
    if (descriptor < 0 ||
        !file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered, QFile::AutoCloseHandle))
        return std::nullopt;
    const QByteArray bytes = file.size() <= limit ? file.readAll() : QByteArray();
    // The file may have grown over the limit meanwhile.
    const bool isWhole = file.error() == QFile::NoError && file.size() <= limit;
    return isWhole && bytes.size() <= limit ? std::optional(bytes) : std::nullopt;
}

bool lockFile(int descriptor, int operation) {
    int result = flock(descriptor, operation);
    while (result != 0 && errno == EINTR)
        result = flock(descriptor, operation);
    return result == 0;
}

bool makeOwnFolder(const QString &path) {
    QDir().mkdir(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return QFileInfo(path).isDir();
}

bool syncFolder(const QString &path) {
    const Descriptor folder(
        open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // EINVAL: the file system cannot sync folders.
    return folder.isOpen() && (fsync(folder.number()) == 0 || errno == EINVAL);
}

} // namespace tidebrook
