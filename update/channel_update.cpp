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

bool updateChannel(const DeviceRoot &device, Registry &registry, FeedStore &store,
                   const QString &url, const QString &channelName, const QString &category,
                   int *storedCount, const HttpLimits &limits) {
    if (url.isNull() || channelName.isNull() || category.isNull())
        return false;
    store.clearError();
    FeedFetcher fetcher(device, registry, store, limits);
    Pause(fetcherPause);
    if (!fetcher.fetchAndParse(url, channelName, category))
        store.recordError(fetcher.error());
    if (storedCount)
        *storedCount = fetcher.storedCount();
    const bool isOpen = recountAndReopen(store, channelName);
    Pause(fetcherPause);
    return isOpen;
}

} // namespace tidebrook
