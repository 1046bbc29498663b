#pragma once

#include "store/update_state.h"
#include "update/refresh.h"

#include <QDateTime>

#include <cstddef>
#include <functional>
#include <vector>

namespace tidebrook {

/// A channel that is to be refreshed, and what is known of its feed. A state without validators has
/// the feed fetched whole.
struct FeedTurn {
    RefreshJob job;
    UpdateState state;
};

/// Gets the end of each turn, by its index, on the thread that runs them.
struct TurnObserver {
    /// The feed was asked for. `isUnchanged`: the server had nothing new to send.
    std::function<void(std::size_t, const RefreshResult &, bool isUnchanged)> ended;
    /// The feed was not asked for, since its host wants to be left alone until then or, where that
    /// is invalid, has not answered other requests.
    std::function<void(std::size_t, const QDateTime &until)> leftAlone;
};

/// Refreshes channels as their servers like it, on this thread and without pauses: it downloads
/// `parallel` at a time, never two of one host, only documents that have changed since they were
/// stored, and nothing more from a host that has had too many requests or timed out three times in
/// a row. `states` remembers how each turn ended, as one that began at `start`.
///
/// False when a feed had no turn, since the stop of the target's limits was raised or nothing can
/// be sent, and when no server at all was reached: that counts as a failure of no feed, since the
/// network was missing.
bool refreshPolitely(const RefreshTarget &target, UpdateStateStore &states,
                     const std::vector<FeedTurn> &turns, int parallel, const QDateTime &start,
                     const TurnObserver &observer);

} // namespace tidebrook
