#pragma once

#include "platform/base/device_root.h"
#include "platform/sql/registry.h"
#include "platform/sync/named_event.h"
#include "store/headlines.h"

#include <QString>

#include <optional>

namespace tidebrook {

/// A tap on a headline, which a reader is to take: set as long as this lives, or until one takes
/// it. Thread-safe.
class OfferedTap {
public:
    explicit OfferedTap(const DeviceRoot &device);
    /// Takes the tap back, so that no reader follows it later.
    ~OfferedTap();
    OfferedTap(const OfferedTap &) = delete;
    OfferedTap &operator=(const OfferedTap &) = delete;

    /// Offers the headline in place of one before. Waits for another process that writes the
    /// registry, 2 seconds at most. False, with nothing offered, when it could not be written.
    bool offer(const Headline &headline, QStringView todayItemKey);

private:
    const DeviceRoot device_;
    NamedEvent tapped_;
};

/// Has a reader that comes forward show its settings: set as long as this lives, or until one takes
/// it.
class OfferedSettings {
public:
    explicit OfferedSettings(const DeviceRoot &device);
    ~OfferedSettings() { wanted_.reset(); }
    OfferedSettings(const OfferedSettings &) = delete;
    OfferedSettings &operator=(const OfferedSettings &) = delete;

private:
    NamedEvent wanted_;
};

/// Whether the settings are to be shown; true for one reader, once. Does not wait.
bool takeWantedSettings(const DeviceRoot &device);

/// Takes the tap that is waiting, if there is one: the event "CLKTODAY" reports it, and the Today
/// item's values "CATEGORY", "CHANNEL" and "TITLE" describe it. One that lacks a text is taken and
/// ignored. Does not wait.
std::optional<Headline> takeTodayTap(const DeviceRoot &device, Registry &registry,
                                     const QString &todayItemKey);

} // namespace tidebrook
