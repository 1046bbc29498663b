#pragma once

#include "platform/base/device_root.h"
#include "platform/sql/registry.h"

#include <QByteArray>

namespace tidebrook {

/// Makes a device root where there is none, with the given seed file and the settings' first
/// values. A root that exists is left as it is. False when the root could not be made; nothing is
/// left behind then.
bool provisionDevice(const DeviceRoot &device, const QByteArray &seedFile,
                     const QString &todayItemKey);

/// Writes those first values of the settings that are missing, as all are in a registry that was
/// lost. False when the registry could not be written; none is written then.
bool createFirstValues(Registry &registry, QStringView todayItemKey);

} // namespace tidebrook
