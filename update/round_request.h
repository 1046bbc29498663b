#pragma once

#include "platform/base/device_root.h"

#include <QStringView>

namespace tidebrook {

/// Has the downloader update the channels of the automatic list now: auto reset, and held open by
/// the downloader while it runs.
inline constexpr QStringView roundRequestEvent = u"RSS_AUTODL";

/// Asks the downloader for a round over the automatic list, and starts it where it does not run,
/// which may take 10 seconds. The round begins at once, whatever the settings of the automatic
/// updates are, unless one is running already. False when the downloader cannot be started or not
/// be asked. Thread-safe.
bool requestRound(const DeviceRoot &device);

} // namespace tidebrook
