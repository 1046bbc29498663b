#pragma once

#include "store/feed_store.h"

#include <QString>

namespace tidebrook {

/// Writes a category with all its channels, or with the one that is named (null: all), as an OPML
/// 2.0 list. The file is replaced whole; false, with the file that was there as it was, when
/// something of the list cannot be read or the file not be written. Waits for the disk.
bool exportOpml(FeedStore &store, const QString &category, const QString &channel,
                const QString &path);

} // namespace tidebrook
