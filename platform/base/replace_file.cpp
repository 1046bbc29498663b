#include "platform/base/replace_file.h"

#include "platform/base/aside.h"
#include "platform/base/plain_file.h"

#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

namespace tidebrook {

namespace {

// In the user's own folders, a prefix that cannot be part of another file's name.
QString asidePrefix(const QString &path, Readers readers) {
    return readers == Readers::Owner ? QString(path + u'.')
                                     : QFileInfo(path).path() + u"/.tidebrook-";
}

// A file that does not exist, as behind a link that leads nowhere, has no canonical path.
QString fileMeant(const QString &path, Readers readers) {
    const QString real =
        readers == Readers::Usual ? QFileInfo(path).canonicalFilePath() : QString();
    return real.isEmpty() ? path : real;
}

mode_t modeFor(const QString &path, Readers readers) {
    struct stat there {};
    if (readers == Readers::Owner)
        return 0600;
    const bool isThere = stat(QFile::encodeName(path).constData(), &there) == 0;
    return isThere ? there.st_mode & 0777U : 0666;
}

} // namespace

FileReplacement::FileReplacement(const QString &path, Readers readers)
    : path_(fileMeant(path, readers)) {
    if (fileKindAt(path_) == FileKind::Other)
        return;
    const QString prefix = asidePrefix(path_, readers);
    removeLeftAside(prefix, hasMadeUpEnding);
    const mode_t mode = modeFor(path_, readers);
    const Aside aside = makeFileAside(prefix, mode);
    asidePath_ = aside.path;
    if (aside.descriptor >= 0)
        file_.open(aside.descriptor, QIODevice::ReadWrite | QIODevice::Unbuffered,
                   QFile::AutoCloseHandle);
    if (fileKindAt(path_) == FileKind::Plain) // its mode stays, whatever the umask
        fchmod(aside.descriptor, mode);
}

FileReplacement::~FileReplacement() {
    if (!asidePath_.isEmpty())
        QFile::remove(asidePath_);
}

bool FileReplacement::commit() {
    const bool isInPlace = file_.isOpen() && file_.error() == QFile::NoError &&
                           fsync(file_.handle()) == 0 && fileKindAt(path_) != FileKind::Other &&
                           std::rename(QFile::encodeName(asidePath_).constData(),
                                       QFile::encodeName(path_).constData()) == 0;
    if (!isInPlace)
        return false;
    asidePath_.clear();
    syncFolder(QFileInfo(path_).path()); // a failure of this is none of the replacement
    return true;
}

bool replaceFile(const QString &path, const QByteArray &content, Readers readers) {
    FileReplacement replacement(path, readers);
    return replacement.file().isOpen() && replacement.file().write(content) == content.size() &&
           replacement.commit();
}

} // namespace tidebrook
