#pragma once

#include "feed_server/feed_server.h"
#include "update/refresh_job.h"

#include <QList>
#include <QString>

namespace tidebrook {

/// What a store for a benchmark holds. All names and articles are made up.
struct StorePlan {
    int filledChannels = 0;
    int articlesPerChannel = 0;
    int categories = 0;           ///< that the filled channels are spread over
    QList<RefreshJob> feeds = {}; ///< channels without articles, in the last category
    bool areAutomatic = false;    ///< the feeds are on the automatic list
};

// What the store holds that the user of the screens reads, and what is brought in and out.
inline constexpr int readCategories = 50;
inline constexpr int channelsToRead = 19;  // in each of those
inline constexpr int articlesToRead = 110; // in each channel
inline constexpr int channelsToUpdate = 20;
inline constexpr int channelsToShare = 50;   // in each of the other categories
inline constexpr int importedChannels = 223; // as many as a list may offer
inline constexpr int exportedChannels = 600; // in the last category

/// Has the server send the feed with that number, with items from the number `first` on, always or
/// when it has changed. Its channel.
RefreshJob serveFeed(FeedServer &server, int number, int items, bool haveValidators, int first = 0);

/// Has the server send feeds of so many items, always or when they have changed. Their channels.
QList<RefreshJob> serveFeeds(FeedServer &server, int count, int items, bool haveValidators = false);

/// Makes a device at `home`, which must not exist, with that store. Throws std::runtime_error.
void makeStore(const QString &home, const StorePlan &plan);

/// A copy of a device that no process has open, as long as this object lives. It is on the disk
/// already, so that no measurement pays for that.
class StoreCopy {
public:
    /// Throws std::runtime_error.
    explicit StoreCopy(const QString &store);
    ~StoreCopy();
    StoreCopy(const StoreCopy &) = delete;
    StoreCopy &operator=(const StoreCopy &) = delete;

    const QString home;
};

} // namespace tidebrook
