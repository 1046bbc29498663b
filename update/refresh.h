#pragma once

#include "platform/device_root.h"
#include "platform/http.h"
#include "platform/registry.h"
#include "store/feed_store.h"

#include <QList>
#include <QString>

#include <functional>

namespace tidebrook {

/// A channel that is to be refreshed.
struct RefreshJob {
    QString url;
    QString channelName;
    QString category;
};

/// How a channel's refresh ended.
struct RefreshResult {
    quint32 error = 0;     ///< 0, or the code of the failure
    int storedCount = 0;   ///< articles that are new
    ReadFlagCounts counts; ///< 0/0 when the database failed
};

/// The parts that a refresh works on. They outlive it.
struct RefreshTarget {
    const DeviceRoot &device;
    Registry &registry;
    FeedStore &store;
    HttpLimits limits = {};
};

/// Refreshes one channel without pauses: fetches, and then stores, prunes and counts as one
/// change of the database, which syncs once. Waits for the network; thread-safe.
RefreshResult refreshChannel(const RefreshTarget &target, const RefreshJob &job);

/// Refreshes channels, up to `parallel` (1 or more) at a time on threads of its own, which have
/// ended when it returns. `observer` is told of each channel as it ends (its index, and its
/// result), on the calling thread.
QList<RefreshResult>
refreshChannels(const RefreshTarget &target, const QList<RefreshJob> &jobs, int parallel,
                const std::function<void(qsizetype, const RefreshResult &)> &observer);

} // namespace tidebrook
