#pragma once

#include "platform/base/device_root.h"
#include "store/feed_store.h"
#include "update/refresh_job.h"

#include <QString>

namespace tidebrook {

/// How a change of channels ended that concerns the database and the list of automatic updates.
enum class ChannelChange {
    Done,
    NameTaken,   ///< another channel has the name
    StoreFailed, ///< nothing is changed; the store's error field may have the code
    ListFailed,  ///< the list could not be read or written
};

// The caller of these holds the lock of the channels. A line of the list that one of them leaves
// behind, because it was broken off or the list failed, goes with the list's next change.

/// Renames a channel, which the list follows. Unless it is done nothing is changed.
ChannelChange renameChannel(const DeviceRoot &device, FeedStore &store, const QString &old,
                            const QString &name);

/// Deletes a channel, or all those of a category, with their articles, and tells the Today item.
/// They are gone also when only the list failed.
ChannelChange deleteChannel(const DeviceRoot &device, FeedStore &store, const QString &name);
ChannelChange deleteChannelsOf(const DeviceRoot &device, FeedStore &store, const QString &category);

/// Puts a channel on the list, unless it is there, or takes it off.
ChannelChange makeAutomatic(const DeviceRoot &device, FeedStore &store, const RefreshJob &job,
                            bool isAutomatic);

} // namespace tidebrook
