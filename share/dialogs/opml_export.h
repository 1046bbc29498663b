#pragma once

#include "app/app_state.h"

#include <QString>

namespace tidebrook {

// Write a category, or one of its channels, as OPML to a file that the user names. They return when
// the file is named or the user cancels; the file is written after that. A failure shows an error.

void exportCategory(AppState &state, const QString &category);
void exportChannel(AppState &state, const QString &category, const QString &channel);

} // namespace tidebrook
