#include "app/base/device_parts.h"

#include "platform/file_lock.h"
#include "res/strings.h"
#include "store/error_codes.h"
#include "store/seeding.h"

namespace tidebrook {

DeviceParts::DeviceParts(const DeviceRoot &deviceRoot)
    : root(deviceRoot), todayItemName(resourceString(todayItemNameString)),
      todayItemKey(tidebrook::todayItemKey(todayItemName)), registry(root), settings(registry),
      categoryStore(registry), dbMutex(root, u"RSSMutex") {
    store.emplace(root, registry, todayItemKey);
}

int DeviceParts::open() {
    const FileLock channelsLock(channelsLockPath());
    const bool isRegistryReadable = registry.isOpen() && registry.values(programKey).has_value();
    quint32 categoryCount = 0;
    settings.RegReadDword(programKey, u"CategoryNumber", categoryCount);
    if (categoryCount == 0 && isRegistryReadable)
        seedCategories(root, registry);
    const bool isStoreOpen = store->Open();
    if (!isRegistryReadable)
        return fileProblemString;
    if (!isStoreOpen)
        return store->error() == SeedFileMissing ? fileProblemString : databaseProblemString;
    return 0;
}

void DeviceParts::close() {
    store->Close();
    store.reset();
}

} // namespace tidebrook
