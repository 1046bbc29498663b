#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <sched.h>

namespace tidebrook {

/// While it lives, this process can write nothing into files, as on a full disk.
class FullDisk {
public:
    FullDisk() : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &limit_);
        const rlimit none{0, limit_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &none);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &limit_);
        std::signal(SIGXFSZ, signal_);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    void (*signal_)(int);
    rlimit limit_{};
};

/// Puts a disk of so many KiB at a folder, which this process alone sees; done again, the disk is
/// made larger. For a forked process. False where the system does not let it.
inline bool mountDisk(const QString &folder, int kib, bool isThere = false) {
    const uid_t user = geteuid();
    const auto tell = [](const char *path, const QByteArray &text) {
        QFile file(QString::fromLatin1(path));
        return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write(text) > 0;
    };
    const bool isApart = isThere || (user == 0 ? unshare(CLONE_NEWNS) == 0
                                               : unshare(CLONE_NEWNS | CLONE_NEWUSER) == 0 &&
                                                     tell("/proc/self/uid_map",
                                                          "0 " + QByteArray::number(user) + " 1"));
    const QByteArray size = "size=" + QByteArray::number(kib) + 'k';
    return isApart && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("disk", QFile::encodeName(folder).constData(), "tmpfs", isThere ? MS_REMOUNT : 0,
                 size.constData()) == 0;
}

} // namespace tidebrook
