#pragma once

#include "app/app_state.h"
#include "app/data_jobs.h"

#include <QList>

namespace tidebrook {

/// Where the result of adding channels goes.
struct ChannelAdding {
    AppState &state;
    QObject *receiver; ///< `end` is not called when it is gone
    JobEnd end;        ///< gets 0 when all are stored, else the reason for the first that is not
};

/// Starts adding channels. Line ends and outer blanks are removed from a name; a channel whose name
/// is empty then gets one.
void startAdding(const ChannelAdding &adding, const QList<ChannelRecord> &channels);

} // namespace tidebrook
