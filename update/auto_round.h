#pragma once

#include "update/refresh.h"

#include <QDateTime>

#include <functional>

namespace tidebrook {

struct AutoRound {
    QDateTime start;      ///< of the round; its times go by this
    QDateTime since;      ///< channels that were tried since then have had their turn
    bool isDaily = false; ///< rounds are a day apart
};

struct AutoRoundResult {
    int tried = 0;
    int unchanged = 0;
    int failed = 0;
    int leftAlone = 0;   ///< not tried yet again, for their servers' sake
    int unknown = 0;     ///< on the list, but no longer in the store
    int storedCount = 0; ///< new articles
    int newChannels = 0; ///< channels that have got some of these
    /// Whether every channel has had its turn. If not, the same round is to be run again: it was
    /// stopped, the list or the store could not be read, or no server at all was reached.
    bool isOver = false;
};

/// Updates the channels of the automatic list as their servers like it (`refreshPolitely`), four at
/// a time and on this thread. Ends early when the stop of the target's limits is raised. `observer`
/// gets each channel that was tried.
AutoRoundResult
runAutoRound(const RefreshTarget &target, const AutoRound &round,
             const std::function<void(const RefreshJob &, const RefreshResult &)> &observer);

} // namespace tidebrook
