#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace tidebrook {

/// Who may read a new file.
enum class Readers {
    Owner, ///< its owner alone: files of the device
    Usual, ///< as the umask says, or the file that is replaced: files of the user
};

/// A file that is written aside, in the folder of the file that it replaces. What a killed process
/// left aside is removed by the next replacement.
///
/// Only a plain file is replaced: a folder, a pipe, a device or a symbolic link stays as it is. For
/// `Readers::Usual` a link to a plain file stands for that file.
class FileReplacement {
public:
    explicit FileReplacement(const QString &path, Readers readers = Readers::Owner);
    ~FileReplacement();
    FileReplacement(const FileReplacement &) = delete;
    FileReplacement &operator=(const FileReplacement &) = delete;

    /// Open for writing and reading, unbuffered; not open when the file could not be made.
    QFile &file() { return file_; }

    /// Syncs the file and puts it in place. False when that failed; what was there is then as it
    /// was. The file stays open.
    bool commit();

private:
    const QString path_;
    QString asidePath_; // empty once it is in place
    QFile file_;
};

/// Replaces a file whole: also after a crash a reader finds the old content or the new. False when
/// that failed, or what is there is no plain file; it is then as it was.
bool replaceFile(const QString &path, const QByteArray &content, Readers readers = Readers::Owner);

} // namespace tidebrook
