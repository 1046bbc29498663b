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

bool writeFirstValues(const DeviceRoot &device, QStringView todayItemKey) {
    const FirstValue firstValues[] = {
        {programKey, u"UpdateMode", 0},  {programKey, u"UpdateInterval", 1},
        {programKey, u"UpdateTime", 0},  {programKey, u"ACTOPTION", 0},
        {programKey, u"NoRoaming", 0},   {todayItemKey, u"Enabled", 1},
        {todayItemKey, u"TodayTimer", 1}};
    Registry registry(device);
    Registry::Batch batch(registry);
    bool isWritten = batch.isOpen();
    for (const FirstValue &first : firstValues)
        isWritten = isWritten && registry.write(first.key, first.name, first.value);
    return isWritten && batch.commit();
}

} // namespace

bool provisionDevice(const DeviceRoot &device, const QByteArray &seedFile,
                     const QString &todayItemKey) {
    return device.provision([&](const DeviceRoot &built) {
        return replaceFile(built.filePath(u"\\windows\\RSSChannels.txt"), seedFile) &&
               writeFirstValues(built, todayItemKey) &&
               SqliteDatabase::settle(built.registryPath());
    });
}

} // namespace tidebrook
