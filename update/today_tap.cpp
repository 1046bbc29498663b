#include "update/today_tap.h"

#include "store/escape_sql.h"
#include "store/settings_store.h"

namespace tidebrook {

namespace {

constexpr QStringView tapEvent = u"CLKTODAY";
constexpr QStringView settingsEvent = u"TODAYSETTING";

} // namespace

OfferedTap::OfferedTap(const DeviceRoot &device)
    : device_(device), tapped_(device, tapEvent, NamedEvent::Reset::Auto) {}

OfferedTap::~OfferedTap() { tapped_.reset(); }

bool OfferedTap::offer(const Headline &headline, QStringView todayItemKey) {
    tapped_.reset(); // a reader that takes it now would find one value of each
    Registry registry(device_);
    Registry::Batch batch(registry);
    return batch.isOpen() && registry.write(todayItemKey, u"CATEGORY", headline.category) &&
           registry.write(todayItemKey, u"CHANNEL", headline.channel) &&
           registry.write(todayItemKey, u"TITLE", headline.title) && batch.commit() &&
           tapped_.set();
}

OfferedSettings::OfferedSettings(const DeviceRoot &device)
    : wanted_(device, settingsEvent, NamedEvent::Reset::Auto) {
    wanted_.set();
}

bool takeWantedSettings(const DeviceRoot &device) {
    return NamedEvent(device, settingsEvent, NamedEvent::Reset::Auto).test();
}

std::optional<Headline> takeTodayTap(const DeviceRoot &device, Registry &registry,
                                     const QString &todayItemKey) {
    if (!NamedEvent(device, tapEvent, NamedEvent::Reset::Auto).test())
        return std::nullopt;
    SettingsStore settings(registry);
    const Headline tap{settings.text(todayItemKey, u"CATEGORY", categoryCapacity),
                       settings.text(todayItemKey, u"CHANNEL", channelNameCapacity),
                       settings.text(todayItemKey, u"TITLE", titleCapacity)};
    if (tap.category.isEmpty() || tap.channel.isEmpty() || tap.title.isEmpty())
        return std::nullopt;
    return tap;
}

} // namespace tidebrook
