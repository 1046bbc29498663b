#include "subscriptions/device.h"

#include "platform/base/text.h"
#include "platform/sync/file_lock.h"
#include "res/default_channels.h"
#include "res/strings.h"
#include "store/error_codes.h"
#include "store/escape_sql.h"
#include "store/provisioning.h"
#include "store/seeding.h"

#include <algorithm>

namespace tidebrook {

bool provisionDevice(const DeviceRoot &root) {
    return provisionDevice(root, defaultChannelsFile(),
                           todayItemKey(resourceString(todayItemNameString)));
}

Device::Device(const DeviceRoot &deviceRoot)
    : root(deviceRoot), todayItemName(resourceString(todayItemNameString)),
      todayItemKey(tidebrook::todayItemKey(todayItemName)), registry(root), settings(registry),
      categoryStore(registry), store(root, registry, todayItemKey) {}

bool Device::isRegistryReadable() {
    return registry.isOpen() && registry.values(programKey) && registry.values(categoriesKey);
}

DeviceFault Device::open(std::optional<std::chrono::milliseconds> lockTimeout) {
    const FileLock channelsLock(channelsLockPath(), lockTimeout);
    const bool isReadable = isRegistryReadable();
    bool areListed = !isReadable || seedIfEmpty(channelsLock.isHeld());
    const bool isStoreOpen = store.Open();
    if (!isReadable)
        return DeviceFault::RegistryUnreadable;
    if (!isStoreOpen)
        return DeviceFault::StoreFailed;
    ownFiles_ = files();
    // While another process is at work, a category may be lost for a moment only.
    areListed = (!channelsLock.isHeld() || listLostCategories()) && areListed;
    if (areListed)
        return DeviceFault::None;
    return store.error() != 0 ? DeviceFault::StoreFailed : DeviceFault::CategoriesNotListed;
}

bool Device::seedIfEmpty(bool isLocked) {
    quint32 categoryCount = 0;
    settings.RegReadDword(programKey, u"CategoryNumber", categoryCount);
    return categoryCount > 0 || (isLocked && createFirstValues(registry, todayItemKey) &&
                                 seedCategories(root, registry));
}

FileIdentities Device::files() const {
    return identitiesOf({root.registryPath(), root.filePath(u"\\RSSVault.sdf")});
}

bool Device::isStillThere() const { return ownFiles_.isEmpty() || files() == ownFiles_; }

bool Device::listLostCategories() {
    QStringList ofChannels;
    auto listed = categoryStore.listedCategories();
    if (!store.ListChannelCategories(ofChannels))
        store.recordError(DatabaseFailed);
    if (!listed || store.error() != 0)
        return false;
    for (QString &name : *listed)
        name = TrimTrailingBlanks(withoutDropped(name)).toString();
    return std::all_of(ofChannels.begin(), ofChannels.end(), [&](const QString &name) {
        return name.isEmpty() || listed->contains(name) || categoryStore.ensureListed(name);
    });
}

} // namespace tidebrook
