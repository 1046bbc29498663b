#pragma once

#include <QString>

#include <sys/types.h>

#include <functional>

namespace tidebrook {

/// A file or folder that is made beside its final place: its name is a prefix and six letters,
/// small and capital ones in turn. It is locked (flock) until its descriptor is closed: one without
/// a lock was left by a killed process.
struct Aside {
    QString path;
    int descriptor = -1; ///< the caller closes it; -1 after a failure
};

/// `prefix` is a path. A file is open for reading and writing.
Aside makeFileAside(const QString &prefix, mode_t mode);
/// Only its owner may enter the folder.
Aside makeFolderAside(const QString &prefix);

/// Removes what killed processes left with this prefix: what has no lock, belongs to the user, and
/// `isOurs` accepts by its path. A symbolic link stays.
void removeLeftAside(const QString &prefix, const std::function<bool(const QString &)> &isOurs);

/// Whether a path ends with six letters, small and capital ones in turn.
bool hasMadeUpEnding(const QString &path);

} // namespace tidebrook
