#pragma once

#include "support/forked_process.h"
#include "support/test_device.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace tidebrook {

/// How a program comes to open a file of the device, and whether it succeeded.
struct Opening {
    QString file;
    std::function<bool(TestDevice &)> isDone;
};

/// What lies at a path, to see that it stays: its kind and number, and a plain file's size.
inline QList<quint64> fileThere(const QString &path) {
    struct stat status {};
    if (lstat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return {status.st_mode, status.st_ino, static_cast<quint64>(status.st_size)};
}

/// Puts what is no plain file in a file's place. A device of the machine must not be in reach:
/// where none can be made, a pipe stands for it.
inline bool putObstacle(const QString &kind, const QString &path, const QString &target) {
    const QByteArray name = QFile::encodeName(path);
    QFile::remove(path);
    if (kind == u"folder")
        return mkdir(name.constData(), 0700) == 0;
    if (kind == u"socket")
        return mknod(name.constData(), S_IFSOCK | 0600, 0) == 0;
    if (kind == u"device" && mknod(name.constData(), S_IFCHR | 0600, makedev(1, 5)) == 0)
        return true;
    if (kind == u"pipe" || kind == u"device")
        return mkfifo(name.constData(), 0600) == 0;
    return QFile::link(kind == u"link" ? target : path + u".nowhere", path);
}

/// Expects that none of the openings succeeds, waits, or changes what lies there.
inline void expectRefused(const Opening &opening) {
    for (const char *kind : {"pipe", "folder", "socket", "device", "link", "dangling link"}) {
        SCOPED_TRACE(opening.file.toStdString() + " is a " + kind);
        TestDevice device;
        const QString path = device.root.path() + u'/' + opening.file;
        const QString target = device.root.path() + u"/target";
        ASSERT_TRUE(writeFile(target, "precious"));
        ASSERT_TRUE(putObstacle(QString::fromLatin1(kind), path, target));
        const auto before = fileThere(path);
        const bool isEvent = opening.file.endsWith(u".event") && S_ISFIFO(before[0]);
        EXPECT_EQ(ForkedProcess([&] { return opening.isDone(device) ? 1 : 0; }).wait(), isEvent)
            << "opened, or it hung";
        EXPECT_EQ(fileThere(path), before);
        EXPECT_EQ(fileThere(target)[2], 8U) << "the link was followed";
        EXPECT_FALSE(QFile::exists(path + u".nowhere"));
    }
}

} // namespace tidebrook
