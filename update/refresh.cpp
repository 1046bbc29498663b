#include "update/refresh.h"

namespace tidebrook {

RefreshResult refreshChannel(const RefreshTarget &target, const RefreshJob &job) {
    FeedFetcher fetcher(target.device, target.registry, target.limits, target.options);
    return storeFetched(target, job, fetcher, fetcher.fetch(job.url, job.channelName));
}

RefreshResult storeFetched(const RefreshTarget &target, const RefreshJob &job, FeedFetcher &fetcher,
                           bool isFetched) {
    RefreshResult result;
    const bool isChanged = target.store.changeAtOnce([&](SqlCommand &command) {
        // While the network was waited for, the channel may have been moved or deleted.
        QString category;
        if (!target.store.FindCategory(job.channelName, category))
            return;
        if (isFetched && category.isNull())
            fetcher.fail(NothingKnown);
        else if (isFetched)
            fetcher.parse(command, job.channelName, escapedCategory(category));
        result.isCounted =
            target.store.RecountChannel(escapedChannelName(job.channelName), &result.counts);
    });
    result.isCounted = result.isCounted && isChanged;
    if (!result.isCounted)
        fetcher.fail(DatabaseFailed);
    result.error = fetcher.error();
    result.toldError = fetcher.toldError();
    result.detail = fetcher.detail();
    result.storedCount = isChanged ? fetcher.storedCount() : 0;
    if (isChanged)
        result.shared = fetcher.sharedArticles();
    return result;
}

} // namespace tidebrook
