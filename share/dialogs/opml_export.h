#pragma once

#include "app/app_state.h"

#include <QString>

namespace tidebrook {

// Has the user name a file, and writes a category or one of its channels to it as OPML. Return
// when the file is named, or the user has given up; the list is written after that, and a failure
// is told.

void exportCategory(AppState &state, const QString &category);
void exportChannel(AppState &state, const QString &category, const QString &channel);

} // namespace tidebrook
