#pragma once

#include "app/app_state.h"

#include <QList>

#include <optional>

namespace tidebrook {

class Dialog;

/// Disables a screen's commands that start an update while one runs.
void followUpdates(UpdateJobs &updates, Dialog &dialog, const QList<int> &commands);

/// Updates a category, or one of its channels. Shows an error when that cannot be started.
void startUpdate(AppState &state, const QString &category,
                 const std::optional<QString> &channel = std::nullopt);

} // namespace tidebrook
