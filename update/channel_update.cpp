#include "update/channel_update.h"

#include "feed/feed_fetcher.h"
#include "platform/pause.h"

namespace tidebrook {

namespace {

constexpr int fetcherPause = 1000; // ms, after the fetcher is made and before it goes
constexpr quint32 recountFailed = 1001;

bool recountAndReopen(FeedStore &store, const QString &channelName) {
    const auto guard = store.lock();
    if (!store.RecountChannel(escapeFeedText(channelName, channelNameCapacity))) {
        store.recordError(recountFailed);
        return false;
    }
    store.ReleaseSession();
    return store.Open();
}

} // namespace

bool updateChannel(const RefreshTarget &target, const RefreshJob &job, int *storedCount) {
    if (job.url.isNull() || job.channelName.isNull() || job.category.isNull())
        return false;
    target.store.clearError();
    FeedFetcher fetcher(target.device, target.registry, target.store, target.limits);
    Pause(fetcherPause);
    if (!fetcher.fetchAndParse(job.url, job.channelName, job.category))
        target.store.recordError(fetcher.error());
    if (storedCount)
        *storedCount = fetcher.storedCount();
    const bool isOpen = recountAndReopen(target.store, job.channelName);
    Pause(fetcherPause);
    return isOpen;
}

} // namespace tidebrook
