#pragma once

#include "platform/base/device_root.h"
#include "store/category_list.h"
#include "store/records.h"

#include <QList>

#include <optional>

namespace tidebrook {

/// The channels of the device's seed file, `\windows\RSSChannels.txt`, one for each of its lines
/// that is not empty. Texts are cut to their capacities and have no trailing blanks; fields that a
/// line does not have are empty. Nothing when the file cannot be read.
std::optional<QList<ChannelRecord>> readSeedChannels(const DeviceRoot &device);

/// Adds every category that the seed file names to the list, as one change of the registry: a
/// start that is cut short leaves them all to the next, and so does a failure. False when they
/// could not be stored; without a seed file there are none.
bool seedCategories(const DeviceRoot &device, Registry &registry);

} // namespace tidebrook
