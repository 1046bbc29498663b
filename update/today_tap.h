#pragma once

#include "platform/base/device_root.h"
#include "platform/sql/registry.h"
#include "platform/sync/named_event.h"
#include "store/headlines.h"

#include <QString>

#include <optional>

namespace tidebrook {

/// What a reader that starts or comes forward is to open. It is offered until a reader takes it, it
/// is withdrawn, or every process that offers something has ended this. Thread-safe.
class TodayOffer {
public:
    explicit TodayOffer(const DeviceRoot &device);

    /// Offers a tapped headline in place of one before. Waits for another process that writes the
    /// registry, 2 seconds at most. False, with nothing offered, when it could not be written.
    bool offerTap(const Headline &headline, QStringView todayItemKey);
    /// Offers the reader's settings.
    bool offerSettings() { return settings_.set(); }

    void withdraw();

private:
    const DeviceRoot device_;
    NamedEvent tap_;
    NamedEvent settings_;
};

/// Whether the settings are to be shown; true for one reader, once. Does not wait.
bool takeWantedSettings(const DeviceRoot &device);

/// Takes the tap that is waiting, if there is one: the event "CLKTODAY" reports it, and the Today
/// item's values "CATEGORY", "CHANNEL" and "TITLE" describe it. One that lacks a text is taken and
/// ignored. Does not wait.
std::optional<Headline> takeTodayTap(const DeviceRoot &device, Registry &registry,
                                     const QString &todayItemKey);

} // namespace tidebrook
