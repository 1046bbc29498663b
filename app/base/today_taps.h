#pragma once

#include "app/base/app_state.h"

#include <functional>

namespace tidebrook {

/// Looks, soon, whether a headline of the Today item has been tapped. One that was is then the
/// state's, and `then` is called; not when the receiver is gone by that time.
void lookForTodayTap(AppState &state, QObject *receiver, std::function<void()> then);

/// The screens lead to no headline any more.
void forgetTodayTap(AppState &state);

} // namespace tidebrook
