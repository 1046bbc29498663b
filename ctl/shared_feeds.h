#pragma once

#include "store/records.h"
#include "store/update_state.h"

#include <QHash>
#include <QList>
#include <QString>

namespace tidebrook {

/// What is to be told, by their names, of those channels whose feed another channel has too: the
/// same address (whatever its scheme, case or slash at the end), or articles of it at the last
/// update.
QHash<QString, QString> sharedFeeds(const QList<ChannelRecord> &feeds,
                                    const QHash<QString, UpdateState> &states);

} // namespace tidebrook
