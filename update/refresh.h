#pragma once

#include "feed/feed_fetcher.h"
#include "update/refresh_job.h"

namespace tidebrook {

/// How a channel's refresh ended.
struct RefreshResult {
    quint32 error = 0;         ///< 0, or the code of the failure
    int storedCount = 0;       ///< articles that are new
    ReadFlagCounts counts;     ///< 0/0 when the database failed
    bool isCounted = false;    ///< whether the channel's counts are stored
    quint32 toldError = error; ///< the code that the user sees
    /// What other channels have of the document; nothing where none was read to its end.
    std::optional<SharedArticles> shared = {};
    QString detail = {}; ///< for the log: why the request was not complete
};

/// Refreshes one channel without pauses: fetches, and then stores, prunes and counts as one
/// change of the database, which syncs once. Waits for the network; thread-safe.
RefreshResult refreshChannel(const RefreshTarget &target, const RefreshJob &job);

/// The second half of a refresh, for a caller that drives the fetcher itself: stores what it got,
/// if `isFetched`, and counts. Waits for no network.
RefreshResult storeFetched(const RefreshTarget &target, const RefreshJob &job, FeedFetcher &fetcher,
                           bool isFetched);

} // namespace tidebrook
