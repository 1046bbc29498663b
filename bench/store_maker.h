#pragma once

#include <QString>
#include <QStringList>

namespace tidebrook {

/// What a store for a benchmark holds.
struct StorePlan {
    int filledChannels = 0;
    int articlesPerChannel = 0;
    int categories = 0;             ///< that the filled channels are spread over
    QStringList emptyChannels = {}; ///< in the category of the benchmarks
};

/// The category of the channels that are refreshed.
inline constexpr QStringView benchCategory = u"Bench";

/// Makes a device at `home`, which must not exist, with that store. Throws std::runtime_error.
void makeStore(const QString &home, const StorePlan &plan);

/// Copies a device that nobody has open, and waits until the copy is on the disk, so that no
/// measurement pays for it. Throws std::runtime_error.
void copyStore(const QString &from, const QString &to);

/// The database file of a device.
QString databaseOf(const QString &home);

} // namespace tidebrook
