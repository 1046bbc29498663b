#include "update/today_tap.h"

#include "platform/sync/named_event.h"
#include "store/escape_sql.h"
#include "store/settings_store.h"

namespace tidebrook {

std::optional<TodayTap> takeTodayTap(const DeviceRoot &device, Registry &registry,
                                     const QString &todayItemKey) {
    if (!NamedEvent(device, u"CLKTODAY", NamedEvent::Reset::Auto).test())
        return std::nullopt;
    SettingsStore settings(registry);
    const TodayTap tap{settings.text(todayItemKey, u"CATEGORY", categoryCapacity),
                       settings.text(todayItemKey, u"CHANNEL", channelNameCapacity),
                       settings.text(todayItemKey, u"TITLE", titleCapacity)};
    if (tap.category.isEmpty() || tap.channel.isEmpty() || tap.title.isEmpty())
        return std::nullopt;
    return tap;
}

} // namespace tidebrook
