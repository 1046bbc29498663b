#pragma once

#include "platform/device_root.h"
#include "platform/registry.h"
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

    /// Tells on standard error why the device cannot be used, if it cannot.
    bool open();

    QStringList categories();
    /// The channels of one category, or of all listed ones.
    QList<ListedChannel> channels(const QString &category = {});
    std::optional<ListedChannel> findChannel(const QString &name);
};

} // namespace tidebrook
