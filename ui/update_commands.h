#pragma once

#include "app/base/app_state.h"

#include <initializer_list>

namespace tidebrook {

class Dialog;

/// While an update runs, a screen's commands that would start another one cannot be chosen.
void followUpdates(AppState &state, Dialog &dialog, std::initializer_list<int> commands);

} // namespace tidebrook
