#pragma once

#include "app/base/app_state.h"
#include "update/today_tap.h"

#include <functional>

namespace tidebrook {

/// Looks, soon, whether a headline of the Today item has been tapped, and hands over one that was;
/// not when the receiver is gone by that time.
void lookForTodayTap(AppState &state, QObject *receiver,
                     std::function<void(const TodayTap &)> then);

/// From now on the screens lead to this headline.
void leadTo(AppState &state, const TodayTap &tap);

/// The screens lead to no headline any more.
void forgetTodayTap(AppState &state);

} // namespace tidebrook
