#include "ctl/device.h"

#include "ctl/commands.h"
#include "ctl/output.h"
#include "platform/base/name_order.h"

namespace tidebrook {

bool CommandDevice::lock() {
    const bool isHeld = locked_.emplace(*this).isHeld();
    if (isHeld)
        holdOutput();
    else
        fail(QStringLiteral("%1: cannot be locked").arg(channelsLockPath()));
    return isHeld;
}

void CommandDevice::unlock() {
    locked_.reset();
    flushOutput();
}

bool CommandDevice::openRegistry() {
    const bool isReadable = isRegistryReadable();
    if (!isReadable)
        fail(QStringLiteral("%1: the settings cannot be read: %2")
                 .arg(root.registryPath(), registry.faults().value(0)));
    return isReadable;
}

bool CommandDevice::openStore() {
    if (!openRegistry())
        return false;
    if (store.Open())
        return true;
    fail(QStringLiteral("%1: %2").arg(root.path(), messageWithCode(store.error())));
    return false;
}

bool CommandDevice::hasChannel(const QString &name) {
    QString category;
    if (!store.FindCategory(name, category)) {
        failStore(*this);
        return false;
    }
    if (category.isNull())
        fail(QStringLiteral("there is no channel \"%1\"").arg(name));
    return !category.isNull();
}

bool CommandDevice::hasCategory(const QString &name) {
    const bool isListed = categories().contains(name);
    if (!isListed)
        fail(QStringLiteral("there is no category \"%1\"").arg(name));
    return isListed;
}

std::optional<QList<ListedChannel>> CommandDevice::channels(const QString &category) {
    const auto guard = store.lock();
    QList<ListedChannel> listed;
    for (const QString &name : category.isNull() ? categories() : QStringList{category}) {
        QList<ListedChannel> channels;
        if (!store.ListWholeCategory(name, channels)) {
            failStore(*this);
            return std::nullopt;
        }
        sortByName(channels);
        listed += channels;
    }
    return listed;
}

QStringList CommandDevice::categories() {
    return categoryStore.listedCategories().value_or(QStringList());
}

QString foldersFailure(const DeviceRoot &root) {
    return QStringLiteral("%1: the device's folders cannot be made").arg(root.path());
}

} // namespace tidebrook
