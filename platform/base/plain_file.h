#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace tidebrook {

/// Whether a symbolic link at the end of a path is gone along. A file of the device is never a
/// link; one that the user names may be.
enum class Links { Refused, Followed };

/// What lies at a path. A link that leads nowhere is `Other`, and so is any link that is refused.
enum class FileKind { Missing, Plain, Other };
FileKind fileKindAt(const QString &path, Links links = Links::Refused);

/// Opens a plain file with the flags of open(2), and closed for programs that are run. What is no
/// plain file is not opened, and nothing is waited for. A file that is made can be read and written
/// by its owner alone. The descriptor; -1, with `errno` set, after a failure.
int openPlainFile(const QString &path, int flags, Links links = Links::Refused);

/// What is in a plain file; nothing when it cannot be read or has more than `limit` bytes.
std::optional<QByteArray> readPlainFile(const QString &path, qint64 limit,
                                        Links links = Links::Refused);

/// flock(2) with `operation`, repeated when a signal interrupts it. False, with `errno` set, after
/// a failure.
bool lockFile(int descriptor, int operation);

/// Makes a folder that only its owner may enter, where there is none. False when there is none
/// afterwards.
bool makeOwnFolder(const QString &path);

/// Makes what was made, renamed and removed in a folder outlive a power cut.
bool syncFolder(const QString &path);

} // namespace tidebrook
