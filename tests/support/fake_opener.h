#pragma once

#include "test_device/test_device.h"

#include <QFile>
#include <QTemporaryDir>

namespace tidebrook {

/// As long as it lives, it stands for the desktop's program that opens links and composes messages.
class FakeOpener {
public:
    FakeOpener() : pathBefore_(qgetenv("PATH")) {
        writeFile(program_, "#!/bin/sh\ncd \"${0%/*}\"\ntest ! -e refuses || exit 3\n"
                            "echo \"$# $*\" >> calls\n");
        QFile::setPermissions(program_, QFile::ReadOwner | QFile::ExeOwner);
        qputenv("PATH", folder_.path().toLocal8Bit() + ':' + pathBefore_);
    }
    ~FakeOpener() { qputenv("PATH", pathBefore_); }
    FakeOpener(const FakeOpener &) = delete;
    FakeOpener &operator=(const FakeOpener &) = delete;

    /// What it was called with so far: for each call a line with the number of its arguments, and
    /// these.
    QByteArray calls() const { return contentOf(folder_.filePath(QStringLiteral("calls"))); }
    /// From now on it does nothing and fails.
    void refuse() { writeFile(folder_.filePath(QStringLiteral("refuses")), {}); }
    /// From now on there is no such program.
    void remove() {
        QFile::remove(program_);
        qputenv("PATH", folder_.path().toLocal8Bit());
    }

private:
    QTemporaryDir folder_;
    const QString program_ = folder_.filePath(QStringLiteral("xdg-open"));
    QByteArray pathBefore_;
};

} // namespace tidebrook
