#pragma once

#include "store/feed_store.h"

#include <QString>

namespace tidebrook {

/// Writes a category with one channel, or with all its channels where `channel` is null, as an OPML
/// 2.0 list. The file is replaced whole; false, with the old file unchanged, when a channel cannot
/// be read or the file cannot be written. Waits for the disk.
bool exportOpml(FeedStore &store, const QString &category, const QString &channel,
                const QString &path);

} // namespace tidebrook
