#include "platform/base/aside.h"

#include "platform/base/descriptor.h"
#include "platform/base/plain_file.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace tidebrook {

namespace {

constexpr int letterCount = 6;
constexpr int attempts = 100;

QString letters() {
    QString text;
    for (int i = 0; i < letterCount; ++i) {
        const char16_t first = i % 2 == 0 ? u'a' : u'A';
        text += QChar(static_cast<char16_t>(first + QRandomGenerator::system()->bounded(26)));
    }
    return text;
}

// Before it was locked, another process may have removed it as one that was left.
bool isStillThere(int descriptor, const char *path) {
    struct stat own {};
    struct stat there {};
    return fstat(descriptor, &own) == 0 && lstat(path, &there) == 0 && own.st_ino == there.st_ino &&
           own.st_dev == there.st_dev;
}

Aside makeAside(const QString &prefix, const std::function<int(const char *)> &make) {
    for (int i = 0; i < attempts; ++i) {
        const QString path = prefix + letters();
        const QByteArray name = QFile::encodeName(path);
        const int descriptor = make(name.constData());
        if (descriptor < 0 && errno != EEXIST && errno != ENOENT)
            return {};
        if (descriptor < 0)
            continue;
        const bool isLocked = lockFile(descriptor, LOCK_EX);
        if (isLocked && isStillThere(descriptor, name.constData()))
            return {path, descriptor};
        close(descriptor);
        if (!isLocked) { // which the file system does not offer
            std::remove(name.constData());
            return {};
        }
    }
    return {};
}

bool isFreeAndOwn(int descriptor) {
    struct stat status {};
    return descriptor >= 0 && fstat(descriptor, &status) == 0 && status.st_uid == geteuid() &&
           (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)) &&
           lockFile(descriptor, LOCK_EX | LOCK_NB);
}

} // namespace

Aside makeFileAside(const QString &prefix, mode_t mode) {
    return makeAside(prefix, [mode](const char *path) {
        return open(path, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    });
}

Aside makeFolderAside(const QString &prefix) {
    return makeAside(prefix, [](const char *path) {
        return mkdir(path, 0700) == 0 ? open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
    });
}

void removeLeftAside(const QString &prefix, const std::function<bool(const QString &)> &isOurs) {
    const qsizetype length = QFileInfo(prefix).fileName().size() + letterCount;
    QStringList found;
    QDirIterator all(QFileInfo(prefix).path(), QDir::AllEntries | QDir::Hidden | QDir::System);
    while (all.hasNext()) {
        const QString path = all.next();
        if (path.startsWith(prefix) && all.fileName().size() == length)
            found.append(path);
    }
    for (const QString &path : std::as_const(found)) {
        const Descriptor left(open(QFile::encodeName(path).constData(),
                                   O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (isFreeAndOwn(left.number()) && isOurs(path))
            QFileInfo(path).isDir() ? QDir(path).removeRecursively() : QFile::remove(path);
    }
}

bool hasMadeUpEnding(const QString &path) {
    static const QRegularExpression ending(QStringLiteral("([a-z][A-Z]){3}\\z"));
    return path.contains(ending);
}

} // namespace tidebrook
