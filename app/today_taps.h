#pragma once

#include "app/app_state.h"

namespace tidebrook {

/// Looks, soon, whether a headline of the Today item has been tapped. One that was waits in
/// `TappedHeadline::tap`, and the topmost screen that can lead to it is summoned.
void lookForTodayTap(AppState &state);

/// From now on the screens lead to the headline that waits; false when there is none.
bool followTodayTap(TappedHeadline &headline);

/// The screens lead to no headline any more.
void forgetTodayTap(TappedHeadline &headline);

} // namespace tidebrook
