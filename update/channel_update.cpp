#include "update/channel_update.h"

#include "platform/pause.h"
#include "update/refresh.h"

namespace tidebrook {

namespace {

constexpr int fetcherPause = 1000; // ms, before the channel is fetched and after it is stored

bool reopen(FeedStore &store) {
    const auto guard = store.lock();
    store.ReleaseSession();
    return store.Open();
}

} // namespace

bool updateChannel(const RefreshTarget &target, const RefreshJob &job, int *storedCount) {
    if (job.url.isNull() || job.channelName.isNull() || job.category.isNull())
        return false;
    target.store.clearError();
    Pause(fetcherPause);
    const RefreshResult result = refreshChannel(target, job);
    if (result.error != 0)
        target.store.recordError(result.error);
    if (storedCount)
        *storedCount = result.storedCount;
    const bool isOpen = result.isCounted && reopen(target.store);
    Pause(fetcherPause);
    return isOpen;
}

} // namespace tidebrook
