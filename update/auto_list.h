#pragma once

#include "platform/base/device_root.h"
#include "store/feed_store.h"
#include "update/refresh_job.h"

#include <QList>
#include <QString>

#include <optional>

namespace tidebrook {

// The list of the channels that are updated automatically. Its names are compared over 50
// characters, and without the blanks at their ends.
//
// Every change replaces the list as a whole, and takes out the lines of channels that the store no
// longer has. The caller holds the lock of the channels, so that no other process changes either,
// and has the store open. A change of a device without a list does nothing, with success. False
// means that the list is as it was: it could not be read or written.

/// Whether a channel is on the list. A list that is missing comes into being by this, empty.
/// Nothing when the list cannot be read, or made.
std::optional<bool> isAutoUpdated(const DeviceRoot &device, const QString &channelName);

/// Adds a channel to the list (at its end, also when it is there already) or takes every line of
/// that name out. Does nothing, with success, when a text of the job is null; the caller asks
/// `isAutoUpdated` before it adds. False also when the channel cannot be a line of the list (an
/// empty text, a tab, a line feed).
bool setAutoUpdate(const DeviceRoot &device, FeedStore &store, const RefreshJob &job, bool add);

/// Whether a channel can be a line of the list.
bool canBeAutoUpdated(const RefreshJob &job);

/// Adds, as one change, those of the channels that are not on the list; each can be a line of it.
/// Returns how many these were; nothing on failure. A list that is missing comes into being by
/// this.
std::optional<qsizetype> addAutoUpdated(const DeviceRoot &device, FeedStore &store,
                                        const QList<RefreshJob> &jobs);

/// How many channels of the store are on the list. Nothing when either cannot be read.
std::optional<qsizetype> countAutoUpdated(const DeviceRoot &device, FeedStore &store);

/// To be called before a channel that is on the list gets another name: repeats its line under
/// that name, behind the present one, so that the list is right before the renaming and after it.
/// A name that can be none of a line is left out.
bool prepareAutoRename(const DeviceRoot &device, FeedStore &store, const QString &old,
                       const QString &name);

/// Takes out the lines of channels that the store no longer has, and nothing else.
bool pruneAutoUpdated(const DeviceRoot &device, FeedStore &store);

/// The channels of the list in its order, to be updated: each name once, its texts cut
/// to their capacities. A line that is not a name, an address and a category is left out. Nothing
/// when the list cannot be read; a missing one is empty.
std::optional<QList<RefreshJob>> autoUpdatedChannels(const DeviceRoot &device);

} // namespace tidebrook
