#pragma once

#include "feed/feed_fetcher.h"
#include "platform/base/device_root.h"
#include "platform/http/http.h"
#include "platform/sql/registry.h"
#include "store/feed_store.h"

#include <QString>

namespace tidebrook {

/// A channel that is to be refreshed.
struct RefreshJob {
    QString url;
    QString channelName;
    QString category;
};

/// The parts that a refresh works on. They outlive it.
struct RefreshTarget {
    const DeviceRoot &device;
    Registry &registry;
    FeedStore &store;
    HttpLimits limits = {};
    FetchOptions options = {.keepsPauses = false};
};

} // namespace tidebrook
