#include "store/provisioning.h"

#include "platform/base/replace_file.h"
#include "store/settings_store.h"

namespace tidebrook {

namespace {

struct FirstValue {
    QStringView key;
    QStringView name;
    quint32 value;
};

} // namespace

bool createFirstValues(Registry &registry, QStringView todayItemKey) {
    const FirstValue firstValues[] = {
        {programKey, u"UpdateMode", 0},  {programKey, u"UpdateInterval", 1},
        {programKey, u"UpdateTime", 0},  {programKey, u"ACTOPTION", 0},
        {programKey, u"NoRoaming", 0},   {todayItemKey, u"Enabled", 1},
        {todayItemKey, u"TodayTimer", 1}};
    Registry::Batch batch(registry);
    bool isWritten = batch.isOpen();
    for (const FirstValue &first : firstValues)
        isWritten = isWritten && registry.create(first.key, first.name, first.value);
    return isWritten && batch.commit();
}

bool provisionDevice(const DeviceRoot &device, const QByteArray &seedFile,
                     const QString &todayItemKey) {
    const auto fillRegistry = [&](const DeviceRoot &built) {
        Registry registry(built);
        return createFirstValues(registry, todayItemKey);
    };
    return device.provision([&](const DeviceRoot &built) {
        return replaceFile(built.filePath(u"\\windows\\RSSChannels.txt"), seedFile) &&
               fillRegistry(built) && SqliteDatabase::settle(built.registryPath());
    });
}

} // namespace tidebrook
