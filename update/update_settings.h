#pragma once

#include "platform/base/device_root.h"
#include "store/settings_store.h"

#include <QStringView>

#include <optional>

namespace tidebrook {

/// Has a Today item reload what it shows and whether it is shown: auto reset, and kept only
/// while a Today item holds it open.
inline constexpr QStringView todayItemsEvent = u"TODAYITEMS";

/// What the page "Today Setting" shows.
struct TodayPageValues {
    bool isEnabled = false;
    std::optional<int> timer; ///< the choice of speed, from 0; unset: there is none to choose from
};

/// What the page "Auto Update" shows. Choices count from 0, and one that is not in its list (as
/// -1) is none. What is unset was not read: a list is then empty, the rest as the page began.
struct AutoUpdatePageValues {
    std::optional<int> mode;     ///< 0 never, 1 at an interval, else at an hour of the day
    std::optional<int> interval; ///< the choice of an interval
    std::optional<int> time;     ///< the choice of an hour, which is the hour
    std::optional<bool> needsCradle;
    std::optional<bool> noRoaming;
};

/// Reads "Enabled" and "TodayTimer" of the Today item's key. Either is made, as 0, where it is
/// missing, and counts as not read then.
TodayPageValues readTodayPage(SettingsStore &settings, QStringView todayKey);

/// Stores and flushes both (nothing chosen as -1), and has the Today item reload when "Enabled" was
/// stored. False when one of them could not be stored.
bool saveTodayPage(const DeviceRoot &device, SettingsStore &settings, QStringView todayKey,
                   const TodayPageValues &values);

/// Reads "UpdateMode", "UpdateInterval", "UpdateTime", "ACTOPTION" and "NoRoaming" in this order,
/// up to the first that is missing, which is made, as 0, or is no number: that one and those
/// behind it are unset.
AutoUpdatePageValues readAutoUpdatePage(SettingsStore &settings);

/// Stores and flushes all five: without a mode as 2, without an interval as 0, without an hour as
/// -1. False when that failed; then either all of them are as they were, or all are stored but a
/// power cut could undo it.
bool saveAutoUpdatePage(SettingsStore &settings, const AutoUpdatePageValues &values);

} // namespace tidebrook
