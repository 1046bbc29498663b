#pragma once

#include "platform/base/device_root.h"

#include <QStringList>

#include <optional>

namespace tidebrook {

/// Where the Today item stands.
enum class Place {
    Everywhere, ///< a strip at the top of the screen, and an icon in the tray
    Strip,
    Tray,
    Window, ///< an ordinary small window
};

struct TodayArguments {
    DeviceRoot device = DeviceRoot::standard();
    Place place = Place::Everywhere;
};

/// Reads the command line. Where it leaves nothing to do, because of a mistake or a question that
/// is answered here, the result is nothing and `status` the exit status.
std::optional<TodayArguments> readArguments(const QStringList &commandLine, int &status);

} // namespace tidebrook
