#include "update/update_settings.h"

#include "platform/sync/named_event.h"

namespace tidebrook {

namespace {

std::optional<quint32> read(SettingsStore &settings, QStringView key, QStringView name) {
    quint32 value = 0;
    return settings.RegReadDword(key, name, value) ? std::optional(value) : std::nullopt;
}

quint32 storedChoice(std::optional<int> choice) {
    return static_cast<quint32>(choice.value_or(-1));
}

quint32 storedMode(std::optional<int> mode) {
    constexpr int hourOfDay = 2;
    const int number = mode.value_or(hourOfDay);
    return number >= 0 && number < hourOfDay ? static_cast<quint32>(number) : hourOfDay;
}

} // namespace

TodayPageValues readTodayPage(SettingsStore &settings, QStringView todayKey) {
    TodayPageValues values;
    values.isEnabled = read(settings, todayKey, u"Enabled") == 1U;
    if (const auto timer = read(settings, todayKey, u"TodayTimer"))
        values.timer = static_cast<int>(*timer);
    return values;
}

bool saveTodayPage(const DeviceRoot &device, SettingsStore &settings, QStringView todayKey,
                   const TodayPageValues &values) {
    const bool isEnabledStored = settings.setDword(todayKey, u"Enabled", values.isEnabled ? 1 : 0);
    const bool isTimerStored =
        settings.setDword(todayKey, u"TodayTimer", storedChoice(values.timer));
    // Last, so that the Today item finds both when it reloads.
    if (isEnabledStored)
        NamedEvent(device, todayItemsEvent, NamedEvent::Reset::Auto).set();
    return isEnabledStored && isTimerStored && settings.registry().flush();
}

AutoUpdatePageValues readAutoUpdatePage(SettingsStore &settings) {
    AutoUpdatePageValues values;
    bool areRead = true;
    const auto readNext = [&](QStringView name, auto &value, quint32 base = 0) {
        const auto stored = areRead ? read(settings, programKey, name) : std::nullopt;
        areRead = stored.has_value();
        if (stored)
            value = static_cast<std::decay_t<decltype(*value)>>(*stored - base);
    };
    readNext(u"UpdateMode", values.mode);
    readNext(u"UpdateInterval", values.interval, 1);
    readNext(u"UpdateTime", values.time);
    readNext(u"ACTOPTION", values.needsCradle);
    readNext(u"NoRoaming", values.noRoaming);
    return values;
}

bool saveAutoUpdatePage(SettingsStore &settings, const AutoUpdatePageValues &values) {
    {
        // Automatic updates never go by one new value and one old.
        Registry::Batch batch(settings.registry());
        const auto write = [&](QStringView name, quint32 value) {
            return settings.setDword(programKey, name, value);
        };
        const bool isStored = batch.isOpen() && write(u"UpdateMode", storedMode(values.mode)) &&
                              write(u"UpdateInterval", storedChoice(values.interval) + 1) &&
                              write(u"UpdateTime", storedChoice(values.time)) &&
                              write(u"ACTOPTION", values.needsCradle.value_or(false) ? 1 : 0) &&
                              write(u"NoRoaming", values.noRoaming.value_or(false) ? 1 : 0) &&
                              batch.commit();
        if (!isStored)
            return false;
    }
    return settings.registry().flush();
}

} // namespace tidebrook
