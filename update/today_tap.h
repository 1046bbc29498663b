#pragma once

#include "platform/base/device_root.h"
#include "platform/sql/registry.h"

#include <QString>

#include <optional>

namespace tidebrook {

/// A headline of the Today item that the user has tapped; no text is empty.
struct TodayTap {
    QString category;
    QString channel;
    QString title;
};

/// Takes the tap that is waiting, if there is one: the event "CLKTODAY" reports it, and the Today
/// item's values "CATEGORY", "CHANNEL" and "TITLE" describe it. One that lacks a text is taken and
/// ignored. Does not wait.
std::optional<TodayTap> takeTodayTap(const DeviceRoot &device, Registry &registry,
                                     const QString &todayItemKey);

} // namespace tidebrook
