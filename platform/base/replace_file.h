#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace tidebrook {

/// Who may read a new file.
enum class Readers {
    Owner, ///< its owner alone: files of the device
    Usual, ///< those whom the umask lets, or who may read the file that is replaced: the user's
};

/// A file that is written aside, in the folder of the one that it is to replace. While it is
/// there it is locked, so that what a killed process left is known by being free: the next
/// replacement removes that.
///
/// Only a plain file is replaced: a folder, a pipe, a device or a symbolic link stays as it is.
class FileReplacement {
public:
    explicit FileReplacement(const QString &path, Readers readers = Readers::Owner);
    ~FileReplacement();
    FileReplacement(const FileReplacement &) = delete;
    FileReplacement &operator=(const FileReplacement &) = delete;

    /// To be written, and read; open unless the file could not be made. Without a buffer.
    QFile &file() { return file_; }

    /// Puts it in place, lasting. False when that failed; what was there is then as it was. The
    /// file stays open.
    bool commit();

private:
    const QString path_;
    QString asidePath_; // empty once it is in place
    QFile file_;
};

/// Puts a file in place whole, instead of the one that is there: a reader finds the one or the
/// other, also meanwhile and after a crash. False when that failed, as where something lies that
/// is no plain file; what was there is then as it was.
bool replaceFile(const QString &path, const QByteArray &content, Readers readers = Readers::Owner);

} // namespace tidebrook
