#pragma once

#include "app/app_state.h"

#include <initializer_list>
#include <optional>

namespace tidebrook {

class Dialog;

/// While an update runs, a screen's commands that would start another one cannot be chosen.
void followUpdates(AppState &state, Dialog &dialog, std::initializer_list<int> commands);

/// Updates a category, or one of its channels. The user is told when that cannot be begun.
void startUpdate(AppState &state, const QString &category,
                 const std::optional<QString> &channel = std::nullopt);

} // namespace tidebrook
