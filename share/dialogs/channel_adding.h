#pragma once

#include "app/app_state.h"
#include "app/data_jobs.h"

#include <QList>

namespace tidebrook {

/// The caller for whom the wizard adds channels, and who gets the result.
struct ChannelAdding {
    AppState &state;
    QObject *receiver; ///< nothing is told any more when it is gone
    JobEnd end;        ///< gets 0 when all are stored, else the reason for the first that is not
};

/// Starts the adding of channels. Of a name line ends and blanks around it are left out; a channel
/// whose name is empty then is given one.
void startAdding(const ChannelAdding &adding, const QList<ChannelRecord> &channels);

} // namespace tidebrook
