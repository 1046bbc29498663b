#include "ctl/device.h"

#include "ctl/output.h"
#include "res/strings.h"

#include <algorithm>

namespace tidebrook {

QString todayItemKey() { return todayItemsKey + resourceString(todayItemNameString); }

Device::Device(const DeviceRoot &deviceRoot)
    : root(deviceRoot), registry(root), store(root, registry, todayItemKey()),
      categoryStore(registry) {}

bool Device::open() {
    if (!registry.isOpen()) {
        fail(QStringLiteral("%1: the settings cannot be read: %2")
                 .arg(root.registryPath(), registry.error()));
        return false;
    }
    if (!store.Open()) {
        fail(QStringLiteral("%1: %2").arg(root.path(), messageWithCode(store.error())));
        return false;
    }
    return true;
}

QStringList Device::categories() {
    CategoryList list;
    // A read that comes upon a damaged entry takes it out and fails; the next one is whole.
    if (!categoryStore.ReadCategoryList(list))
        categoryStore.ReadCategoryList(list);
    list.removeAll(QString());
    return list;
}

QList<ListedChannel> Device::channels(const QString &category) {
    const auto guard = store.lock();
    QList<ListedChannel> listed;
    for (const QString &name : category.isNull() ? categories() : QStringList{category}) {
        store.ListChannels(escapedCategory(name));
        for (const ChannelRow &row : store.takeChannelRows())
            listed.append({row.nameText(), name, row.unread, row.total});
    }
    return listed;
}

std::optional<ListedChannel> Device::findChannel(const QString &name) {
    const QList<ListedChannel> all = channels();
    const auto found = std::find_if(
        all.begin(), all.end(), [&](const ListedChannel &channel) { return channel.name == name; });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

} // namespace tidebrook
