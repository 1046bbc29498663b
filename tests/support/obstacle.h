#pragma once

#include <QFile>
#include <QStringList>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>

namespace tidebrook {

/// What is no plain file, put where a program looks for one of its own; "link" leads to a plain
/// file that must not be touched, `target`. Where no device may be made it is another pipe.
inline const QStringList obstacles{QStringLiteral("fifo"),   QStringLiteral("folder"),
                                   QStringLiteral("socket"), QStringLiteral("device"),
                                   QStringLiteral("link"),   QStringLiteral("dangling link")};

inline bool putObstacle(const QString &kind, const QString &path, const QString &target) {
    const QByteArray name = QFile::encodeName(path);
    if (kind == u"fifo")
        return mkfifo(name.constData(), 0600) == 0;
    if (kind == u"folder")
        return mkdir(name.constData(), 0700) == 0;
    if (kind == u"socket") {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        if (name.size() >= static_cast<qsizetype>(sizeof address.sun_path))
            return false;
        std::copy(name.begin(), name.end(), address.sun_path);
        const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
        const bool isBound =
            bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
        close(socket);
        return isBound;
    }
    if (kind == u"device") // one of the machine's own must never be in reach
        return mknod(name.constData(), S_IFCHR | 0600, makedev(1, 5)) == 0 ||
               mkfifo(name.constData(), 0600) == 0;
    return QFile::link(kind == u"link" ? target : path + u".nowhere", path);
}

/// What lies at a path, to see that it stays: its kind and number, and a plain file's size.
inline QList<quint64> fileThere(const QString &path) {
    struct stat status {};
    if (lstat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return {status.st_mode, status.st_ino, static_cast<quint64>(status.st_size)};
}

} // namespace tidebrook
