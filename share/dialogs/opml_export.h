#pragma once

#include "app/base/app_state.h"

#include <QString>

namespace tidebrook {

// Has the user name a file, and writes a category or one of its channels to it as OPML. Return
// when the file is named, or the user has given up; what is written is written after that. A
// failure is told, unless the receiver is gone by then.

void exportCategory(AppState &state, QObject *receiver, const QString &category);
void exportChannel(AppState &state, QObject *receiver, const QString &category,
                   const QString &channel);

} // namespace tidebrook
