#pragma once

#include "app/app_state.h"

namespace tidebrook {

/// Shows the settings, on the pages "Today Setting" and "Auto Update", until the user is done or
/// cancels. Does nothing while they are shown.
void showSettings(AppState &state);

} // namespace tidebrook
