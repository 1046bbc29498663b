#pragma once

#include "app/data_jobs.h"

#include <QString>

namespace tidebrook {

/// Shows the properties of a channel until the user is done. 1 when its name, address or category
/// are changed, which is done after that; 0 when they are not. `applied` is told once all changes
/// are made, unless the receiver is gone by then or there are none: 0, or the string that tells
/// why one of them failed.
int runChannelProperties(AppState &state, const QString &category, const QString &channel,
                         QObject *receiver, const JobEnd &applied);

} // namespace tidebrook
