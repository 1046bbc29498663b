#pragma once

#include "platform/base/device_root.h"
#include "store/category_list.h"

#include <QList>
#include <QString>

#include <optional>

namespace tidebrook {

/// A channel that a new device comes with, its texts cut to the capacities of the names and
/// without trailing blanks.
struct SeedChannel {
    QString name;
    QString link;
    QString category;
};

/// The channels of the device's seed file, `\windows\RSSChannels.txt`, one for each of its lines
/// that is not empty; fields that a line does not have are empty. Nothing when the file cannot be
/// read.
std::optional<QList<SeedChannel>> readSeedChannels(const DeviceRoot &device);

enum class Seeding { Done, NoFile, NotStored };

/// Adds every category that the seed file names to the list, as one change of the registry: a
/// start that is cut short leaves them all to the next, and so does a failure (`NotStored`).
Seeding seedCategories(const DeviceRoot &device, Registry &registry);

} // namespace tidebrook
