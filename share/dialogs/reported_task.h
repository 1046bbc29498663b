#pragma once

#include "app/app_state.h"

#include <functional>

namespace tidebrook {

/// Starts work on a thread. It returns 0, or the string that says why it failed, which is then
/// shown. It holds values only, and touches no widget.
void startReportedTask(AppState &state, const std::function<int()> &work);

} // namespace tidebrook
