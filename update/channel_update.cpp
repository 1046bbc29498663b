#include "update/channel_update.h"

#include "platform/sync/pause.h"

namespace tidebrook {

namespace {

constexpr int fetcherPause = 1000; // ms, before the channel is fetched and after it is stored

bool reopen(FeedStore &store) {
    const auto guard = store.lock();
    store.ReleaseSession();
    return store.Open();
}

} // namespace

bool updateChannel(const RefreshTarget &target, const RefreshJob &job, RefreshResult *result) {
    if (job.url.isNull() || job.channelName.isNull() || job.category.isNull())
        return false;
    target.store.clearError();
    Pause(fetcherPause, target.limits.stop);
    const RefreshResult refreshed = refreshChannel(
        {target.device, target.registry, target.store, target.limits, FetchOptions{}}, job);
    if (refreshed.error != 0)
        target.store.recordError(refreshed.error);
    if (result)
        *result = refreshed;
    const bool isOpen = refreshed.isCounted && reopen(target.store);
    Pause(fetcherPause, target.limits.stop);
    return isOpen;
}

} // namespace tidebrook
