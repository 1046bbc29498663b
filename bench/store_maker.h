#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace tidebrook {

struct Feed {
    QString channel;
    QString url;
};
using Feeds = QList<Feed>;

/// What a store for a benchmark holds.
struct StorePlan {
    int filledChannels = 0;
    int articlesPerChannel = 0;
    int categories = 0;             ///< that the filled channels are spread over
    QStringList emptyChannels = {}; ///< in the category of the benchmarks
    Feeds automaticFeeds = {};      ///< channels there, too, and on the automatic list
};

/// The category of the channels that are refreshed.
inline constexpr QStringView benchCategory = u"Bench";

/// Makes a device at `home`, which must not exist, with that store. Throws std::runtime_error.
void makeStore(const QString &home, const StorePlan &plan);

/// Copies a device that nobody has open, and waits until the copy is on the disk, so that no
/// measurement pays for it. Throws std::runtime_error.
void copyStore(const QString &from, const QString &to);

/// Works on a copy of a device, which is gone afterwards.
void onCopy(const QString &store, const std::function<void(const QString &)> &work);

/// The database file of a device.
QString databaseOf(const QString &home);

} // namespace tidebrook
