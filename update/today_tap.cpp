#include "update/today_tap.h"

#include "store/escape_sql.h"
#include "store/settings_store.h"

namespace tidebrook {

namespace {

constexpr QStringView tapEvent = u"CLKTODAY";
constexpr QStringView settingsEvent = u"TODAYSETTING";

} // namespace

TodayOffer::TodayOffer(const DeviceRoot &device)
    : device_(device), tap_(device, tapEvent, NamedEvent::Reset::Auto),
      settings_(device, settingsEvent, NamedEvent::Reset::Auto) {}

bool TodayOffer::offerTap(const Headline &headline, QStringView todayItemKey) {
    tap_.reset(); // a reader that takes it now could find another headline's texts
    Registry registry(device_);
    Registry::Batch batch(registry);
    return batch.isOpen() && registry.write(todayItemKey, u"CATEGORY", headline.category) &&
           registry.write(todayItemKey, u"CHANNEL", headline.channel) &&
           registry.write(todayItemKey, u"TITLE", headline.title) && batch.commit() && tap_.set();
}

void TodayOffer::withdraw() {
    tap_.reset();
    settings_.reset();
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
