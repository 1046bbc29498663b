#pragma once

#include "app/data_jobs.h"

#include <QString>

namespace tidebrook {

/// Shows the properties of a channel until the user is done. Returns 1 when the user changed its
/// name, address or category, else 0. The changes are made after that; then `applied` gets 0, or
/// the string that says why one of them failed. It is not called without changes, or when the
/// receiver is gone.
int runChannelProperties(AppState &state, const QString &category, const QString &channel,
                         QObject *receiver, const JobEnd &applied);

} // namespace tidebrook
