#include "support/fake_opener.h"

#include "support/test_device.h"

#include <QFile>

namespace tidebrook {

using namespace Qt::StringLiterals;

FakeOpener::FakeOpener() : pathBefore_(qgetenv("PATH")) {
    const QString program = folder_.filePath(u"xdg-open"_s);
    writeFile(program, "#!/bin/sh\ncd \"${0%/*}\"\ntest ! -e refuses || exit 3\n"
                       "echo \"$# $*\" >> calls\n");
    QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner);
    qputenv("PATH", folder_.path().toLocal8Bit() + ':' + pathBefore_);
}

FakeOpener::~FakeOpener() { qputenv("PATH", pathBefore_); }

QByteArray FakeOpener::calls() const {
    QFile file(folder_.filePath(u"calls"_s));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void FakeOpener::refuse() { writeFile(folder_.filePath(u"refuses"_s), {}); }

void FakeOpener::remove() {
    QFile::remove(folder_.filePath(u"xdg-open"_s));
    qputenv("PATH", folder_.path().toLocal8Bit());
}

} // namespace tidebrook
