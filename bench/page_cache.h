#pragma once

#include <QSet>
#include <QString>

namespace tidebrook {

/// Drops files from memory, so that the next program that needs them reads them from the disk; as
/// root, all files. Pages that a running program has mapped stay. Whether it helped, `childrenRead`
/// shows.
void dropCachedPages(const QSet<QString> &files);

/// What the programs that this process has run, and that have ended, have read from the disk, in
/// KiB.
double childrenRead();

} // namespace tidebrook
