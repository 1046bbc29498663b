#pragma once

#include "platform/base/device_root.h"
#include "platform/sql/registry.h"

#include <QStringList>

namespace tidebrook {

/// Examines what a device stores: the database's own integrity, each channel's counts against its
/// articles, articles against their channels, and the list of categories against its count and
/// against the channels. Changes nothing. A line for each fault, to be shown to the user.
QStringList checkStore(const DeviceRoot &device, Registry &registry);

} // namespace tidebrook
