#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace tidebrook {

/// Whether a symbolic link at the end of a path is followed. A file of the device is never a link;
/// one that the user names may be.
enum class Links { Refused, Followed };

/// What lies at a path. A dangling link is `Other`, and so is any link that is refused.
enum class FileKind { Missing, Plain, Other };
FileKind fileKindAt(const QString &path, Links links = Links::Refused);

/// Opens a plain file with the flags of open(2); refuses what is no plain file, and never blocks.
/// The descriptor is closed on exec. A file that is made can be read and written by its owner
/// alone. -1, with `errno` set, after a failure.
int openPlainFile(const QString &path, int flags, Links links = Links::Refused);

/// The content of a plain file; nothing when it cannot be read or has more than `limit` bytes.
std::optional<QByteArray> readPlainFile(const QString &path, qint64 limit,
                                        Links links = Links::Refused);

/// flock(2) with `operation`, repeated when a signal interrupts it. False, with `errno` set, after
/// a failure.
bool lockFile(int descriptor, int operation);

/// Makes a folder that only its owner may enter, where there is none. False when there is none
/// afterwards.
bool makeOwnFolder(const QString &path);

/// Syncs a folder, so that what was made, renamed or removed in it outlives a power cut.
bool syncFolder(const QString &path);

} // namespace tidebrook
