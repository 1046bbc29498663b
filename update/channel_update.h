#pragma once

#include "platform/device_root.h"
#include "platform/http.h"
#include "platform/registry.h"
#include "store/feed_store.h"

#include <QString>

namespace tidebrook {

/// Refreshes one channel as an answer to a request: with the fixed pauses before and after (a
/// second each), and with the database closed and opened again at the end. Takes up to 52
/// seconds; call it on a thread that may wait.
///
/// The result tells whether the database is open again and the channel counted. Whether the
/// refresh itself succeeded is told by the store's error field, which is 0 then: it is cleared at
/// the start. `storedCount` is given how many articles are new.
bool updateChannel(const DeviceRoot &device, Registry &registry, FeedStore &store,
                   const QString &url, const QString &channelName, const QString &category,
                   int *storedCount = nullptr, const HttpLimits &limits = {});

} // namespace tidebrook
