#pragma once

#include "store/feed_store.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace tidebrook {

/// A category with one channel, or with all its channels where `channel` is null, as an OPML 2.0
/// list. Nothing when a channel cannot be read.
std::optional<QByteArray> opmlOf(FeedStore &store, const QString &category, const QString &channel);

/// Writes that list into a file. The file is replaced whole; false, with the old file unchanged,
/// when a channel cannot be read or the file cannot be written. Waits for the disk.
bool exportOpml(FeedStore &store, const QString &category, const QString &channel,
                const QString &path);

} // namespace tidebrook
