#pragma once

#include "platform/base/device_root.h"
#include "platform/sql/registry.h"
#include "platform/sync/file_lock.h"
#include "store/category_list.h"
#include "store/feed_store.h"

#include <QList>
#include <QString>

#include <optional>

namespace tidebrook {

/// The registry key of the Today item.
QString todayItemKey();

/// A channel as the lists show it.
struct ListedChannel {
    QString name;
    QString category;
    QString link;
    int unread = 0;
    int total = 0;
};

/// The device that the commands work on, with everything that it stores.
class Device {
public:
    explicit Device(const DeviceRoot &deviceRoot);

    const DeviceRoot root;
    Registry registry;
    FeedStore store;
    CategoryListStore categoryStore;

    // Each of these tells on standard error why it failed, if it did.

    /// Locks the channels against other commands and the reader, for as long as this lives: the
    /// categories and channels that are listed stay so, and a change of several steps is seen
    /// whole.
    bool lockChannels();
    void unlockChannels() { channelsLock_.reset(); }

    bool openRegistry();
    bool openStore();
    /// Whether there is such a channel, in a listed category or not.
    bool hasChannel(const QString &name);
    bool hasCategory(const QString &name);
    /// The channels of one category, or of all listed ones.
    std::optional<QList<ListedChannel>> channels(const QString &category = {});

    QStringList categories();

private:
    std::optional<FileLock> channelsLock_;
};

/// That the folders of a device cannot be made, in words.
QString foldersFailure(const DeviceRoot &root);

} // namespace tidebrook
