#pragma once

#include "store/update_state.h"
#include "update/refresh.h"

#include <QDateTime>
#include <QString>

#include <functional>

namespace tidebrook {

/// How long a feed that has failed this often in a row is left alone.
std::chrono::seconds backOff(int failures);

/// The earliest moment at which a channel may be tried automatically again, for what its feed's
/// server has asked for and (unless rounds are a day apart anyway) how often it has failed.
/// Invalid when that is at any time.
QDateTime nextTry(const UpdateState &state, bool isDaily, const QDateTime &now);

/// Remembers how a refresh that a user has asked for ended. Whatever was held against the feed is
/// forgotten.
void noteRequested(UpdateStateStore &states, const RefreshJob &job, const RefreshResult &result);

struct AutoRound {
    QDateTime start;      ///< of the round; its times go by this
    QDateTime since;      ///< channels tried since then have had their turn
    bool isDaily = false; ///< rounds are a day apart
};

struct AutoRoundResult {
    int tried = 0;
    int unchanged = 0;
    int failed = 0;
    int leftAlone = 0;   ///< not tried yet again, for their servers' sake
    int unknown = 0;     ///< on the list, but no longer in the store
    int storedCount = 0; ///< new articles
};

/// Updates the channels of the automatic list, four at a time but never two of one host, without
/// pauses: only documents that have changed since they were stored are sent. Ends early when the
/// target's limits are told to stop; the channels that were not tried then are tried when the
/// round is run again. `observer` is told of each channel that was tried, on this thread.
AutoRoundResult
runAutoRound(const RefreshTarget &target, const AutoRound &round,
             const std::function<void(const RefreshJob &, const RefreshResult &)> &observer);

} // namespace tidebrook
