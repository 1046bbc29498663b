#include "app/device_parts.h"

#include "platform/base/text.h"
#include "platform/sync/file_lock.h"
#include "res/strings.h"
#include "store/error_codes.h"
#include "store/escape_sql.h"
#include "store/seeding.h"

#include <algorithm>

namespace tidebrook {

DeviceParts::DeviceParts(const DeviceRoot &deviceRoot)
    : root(deviceRoot), todayItemName(resourceString(todayItemNameString)),
      todayItemKey(tidebrook::todayItemKey(todayItemName)), registry(root), settings(registry),
      categoryStore(registry), dbMutex(root, u"RSSMutex") {
    store.emplace(root, registry, todayItemKey);
}

int DeviceParts::open() {
    const FileLock channelsLock(channelsLockPath(), channelsTimeout);
    const bool isRegistryReadable = registry.isOpen() && registry.values(programKey).has_value();
    quint32 categoryCount = 0;
    settings.RegReadDword(programKey, u"CategoryNumber", categoryCount);
    bool areListed = true;
    if (categoryCount == 0 && isRegistryReadable)
        areListed = channelsLock.isHeld() && seedCategories(root, registry) != Seeding::NotStored;
    const bool isStoreOpen = store->Open();
    if (!isRegistryReadable)
        return 0;
    if (!isStoreOpen) {
        SetLastErrorCode(registry, store->error());
        return store->error() == SeedFileMissing ? fileProblemString : databaseProblemString;
    }
    ownFiles_ = files();
    // While another process is at work, a category may be lost for a moment only.
    areListed = (!channelsLock.isHeld() || listLostCategories()) && areListed;
    return areListed ? 0 : fileProblemString;
}

FileIdentities DeviceParts::files() const {
    return identitiesOf({root.registryPath(), root.filePath(u"\\RSSVault.sdf")});
}

bool DeviceParts::isStillThere() const { return ownFiles_.isEmpty() || files() == ownFiles_; }

bool DeviceParts::listLostCategories() {
    QStringList ofChannels;
    auto listed = categoryStore.listedCategories();
    if (!listed || !store->ListChannelCategories(ofChannels))
        return false;
    for (QString &name : *listed)
        name = TrimTrailingBlanks(withoutDropped(name)).toString();
    return std::all_of(ofChannels.begin(), ofChannels.end(), [&](const QString &name) {
        return name.isEmpty() || listed->contains(name) || categoryStore.ensureListed(name);
    });
}

void DeviceParts::close() {
    store->Close();
    store.reset();
}

} // namespace tidebrook
