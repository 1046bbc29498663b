#pragma once

#include "app/app_state.h"
#include "app/data_jobs.h"

#include <QList>

namespace tidebrook {

/// Whoever has the wizard add channels, and is told what comes of it.
struct ChannelAdding {
    AppState &state;
    QObject *receiver; ///< nothing is told any more when it is gone
    JobEnd end;        ///< once all are stored, or why the first one that is not is not
};

/// Starts the adding of channels. Of a name line ends and blanks around it are left out; a channel
/// whose name is empty then is given one.
void startAdding(const ChannelAdding &adding, const QList<ChannelRecord> &channels);

} // namespace tidebrook
