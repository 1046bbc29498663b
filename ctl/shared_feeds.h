#pragma once

#include "store/records.h"
#include "store/update_state.h"

#include <QHash>
#include <QList>
#include <QString>

namespace tidebrook {

/// Says in words, by channel name, which channels have a feed that another channel has too: the
/// same address (in any case, with any scheme, with or without a slash at the end), or articles
/// that another channel had at the last update.
QHash<QString, QString> sharedFeeds(const QList<ChannelRecord> &feeds,
                                    const QHash<QString, UpdateState> &states);

} // namespace tidebrook
