#include "app/base/device_parts.h"

#include "platform/file_lock.h"
#include "platform/text.h"
#include "res/strings.h"
#include "store/error_codes.h"
#include "store/escape_sql.h"
#include "store/seeding.h"

namespace tidebrook {

DeviceParts::DeviceParts(const DeviceRoot &deviceRoot)
    : root(deviceRoot), todayItemName(resourceString(todayItemNameString)),
      todayItemKey(tidebrook::todayItemKey(todayItemName)), registry(root), settings(registry),
      categoryStore(registry), dbMutex(root, u"RSSMutex") {
    store.emplace(root, registry, todayItemKey);
}

int DeviceParts::open() {
    const FileLock channelsLock(channelsLockPath(), channelsPatience);
    const bool isRegistryReadable = registry.isOpen() && registry.values(programKey).has_value();
    quint32 categoryCount = 0;
    settings.RegReadDword(programKey, u"CategoryNumber", categoryCount);
    if (categoryCount == 0 && isRegistryReadable)
        seedCategories(root, registry);
    const bool isStoreOpen = store->Open();
    if (!isRegistryReadable)
        return 0;
    if (!isStoreOpen)
        return store->error() == SeedFileMissing ? fileProblemString : databaseProblemString;
    ownFiles_ = files();
    listLostCategories();
    return 0;
}

FileIdentities DeviceParts::files() const {
    return identitiesOf({root.registryPath(), root.filePath(u"\\RSSVault.sdf")});
}

bool DeviceParts::isStillThere() const { return ownFiles_.isEmpty() || files() == ownFiles_; }

void DeviceParts::listLostCategories() {
    QStringList ofChannels;
    auto listed = categoryStore.listedCategories();
    if (!listed || !store->ListChannelCategories(ofChannels))
        return;
    for (QString &name : *listed)
        name = TrimTrailingBlanks(withoutDropped(name)).toString();
    for (const QString &name : ofChannels) {
        if (!name.isEmpty() && !listed->contains(name))
            categoryStore.AddCategory(name);
    }
}

void DeviceParts::close() {
    store->Close();
    store.reset();
}

} // namespace tidebrook
