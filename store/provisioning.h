#pragma once

#include "platform/base/device_root.h"

#include <QByteArray>

namespace tidebrook {

/// Makes a device root where there is none, with the given seed file and the settings' first
/// values. A root that exists is left as it is. False when the root could not be made; nothing is
/// left behind then.
bool provisionDevice(const DeviceRoot &device, const QByteArray &seedFile,
                     const QString &todayItemKey);

} // namespace tidebrook
