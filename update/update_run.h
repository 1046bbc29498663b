#pragma once

#include "platform/base/device_root.h"
#include "platform/sql/registry.h"
#include "platform/sync/interrupt.h"
#include "store/feed_store.h"
#include "update/download_request.h"

#include <QString>

#include <chrono>
#include <functional>

namespace tidebrook {

/// What an update run works with, all of which outlives it.
struct UpdateParts {
    const DeviceRoot &device;
    Registry &registry;
    FeedStore &store;
    Interrupt &interrupt;                                         ///< woken by the user's input
    std::chrono::milliseconds answerTimeout = usualAnswerTimeout; ///< for each request
};

/// What an update run reports while it is under way, on its own thread. All of them are set. Names
/// are passed as they were cut.
struct UpdateObserver {
    /// Of a category: the channel at `index` (from 0) of `count` is in hand.
    std::function<void(int index, int count)> stepped;
    /// The one channel that was asked for is updated, or the user did not want to wait for that.
    std::function<void(const QString &category, const QString &channel)> updated;
    /// Of a category: a channel is updated, and has so many articles.
    std::function<void(const QString &category, const QString &channel, int unread, int total)>
        counted;
    /// The run ends with a failure, at this channel; at none (null) where the category's channels
    /// could not be listed.
    std::function<void(const QString &category, const QString &channel)> failed;
};

/// An update that the user waits for: has the downloader update one channel, or those of a
/// category one after the other, and waits for its answers. Blocks for minutes; for one thread.
///
/// The downloader is started where it does not run. The user's input ends the wait that it comes
/// in, and a stop ends the run within a moment, unless the downloader is just being started.
///
/// The functions return false when an update failed, and then "ERRORNO" has the code: the
/// downloader's, the store's, or 1012 where no answer came in time or a request of another program
/// took the place of this one. A stopped run has not failed. Longer names are cut to 40 (category)
/// and 50 (channel) characters.
class UpdateRun {
public:
    UpdateRun(const UpdateParts &parts, const UpdateObserver &observer);

    /// A channel without an address is left out: nothing is reported of it.
    bool updateChannel(const QString &category, const QString &channel);

    /// Ends with the first channel that fails. One that is deleted meanwhile is passed over, and
    /// of one whose wait the user ends the counts are not reported.
    bool updateCategory(const QString &category);

private:
    std::optional<RefreshJob> findJob(const QString &category, const QString &channel);
    bool listChannels(const QString &category, QStringList &names);
    bool updateListed(const QString &category, const QString &channel);
    DownloadAnswer request(const RefreshJob &job);
    bool endAt(const QString &category, const QString &channel);
    bool fail(quint32 code);

    const UpdateParts parts_;
    const UpdateObserver observer_;
    DownloadAnswers answers_;
};

} // namespace tidebrook
