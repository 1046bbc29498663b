#pragma once

#include "platform/device_root.h"
#include "update/refresh_job.h"

#include <QList>
#include <QString>

namespace tidebrook {

/// Whether a channel is on the list of those that are updated automatically. A list that is
/// missing comes into being by this, empty.
bool isAutoUpdated(const DeviceRoot &device, const QString &channelName);

/// Adds a channel to the list (at its end, also when it is there already) or takes every line of
/// that name out. Does nothing, with success, when a text of the job is null or there is no list
/// yet; whoever adds asks `isAutoUpdated` first. The list is replaced as a whole, and what another
/// process does to it meanwhile is kept. False means that it is as it was: it could not be
/// written, or the channel cannot be a line of it (an empty text, a tab, a line feed).
bool setAutoUpdate(const DeviceRoot &device, const RefreshJob &job, bool add);

/// Gives the line of a channel that was renamed its new name; the rest of it and its place in the
/// list stay. A name that can be none of a line takes the channel off the list. True also when the
/// channel is not on it. The list is replaced as by `setAutoUpdate`; false means that it is as it
/// was.
bool renameAutoUpdated(const DeviceRoot &device, const QString &old, const QString &name);

/// The channels of the list in its order, for whoever updates them: each name once, its texts cut
/// to their capacities. A line that is not a name, an address and a category is left out.
QList<RefreshJob> autoUpdatedChannels(const DeviceRoot &device);

} // namespace tidebrook
