#pragma once

#include <QString>

#include <sys/types.h>

#include <functional>

namespace tidebrook {

/// A file or folder that is made beside the place that it is meant for: its name is a prefix and
/// six letters, small and capital ones in turn. It is locked (flock) until its descriptor is
/// closed, so that one that is free is known to have been left by a killed process.
struct Aside {
    QString path;
    int descriptor = -1; ///< its maker closes it; -1 when it could not be made
};

/// `prefix` is a path. A file is open for reading and writing.
Aside makeFileAside(const QString &prefix, mode_t mode);
/// Only its owner may enter the folder.
Aside makeFolderAside(const QString &prefix);

/// Removes what others have made with this prefix and left: it is free, the user's own, and
/// `isOurs` says so of its path. A symbolic link stays, whatever it leads to.
void removeLeftAside(const QString &prefix, const std::function<bool(const QString &)> &isOurs);

/// Whether a path ends with six letters as nobody types them.
bool hasMadeUpEnding(const QString &path);

} // namespace tidebrook
