#pragma once

#include "app/app_state.h"

#include <functional>

namespace tidebrook {

/// Does work of its own while the user goes on, wherever to. It gives back 0, or the string that
/// tells the user why it failed, which is then shown. Work is values only: it must not touch a
/// widget.
void startReportedTask(AppState &state, const std::function<int()> &work);

} // namespace tidebrook
