#include "store/provisioning.h"

#include "platform/base/replace_file.h"
#include "store/settings_store.h"

#include <array>

namespace tidebrook {

namespace {

struct FirstValue {
    QStringView name;
    quint32 value;
};

constexpr std::array updateSettings{FirstValue{u"UpdateMode", 0}, FirstValue{u"UpdateInterval", 1},
                                    FirstValue{u"UpdateTime", 0}, FirstValue{u"ACTOPTION", 0},
                                    FirstValue{u"NoRoaming", 0}};
constexpr std::array todaySettings{FirstValue{u"Enabled", 1}, FirstValue{u"TodayTimer", 1}};

bool writeFirstValues(const DeviceRoot &device, const QString &todayItemKey) {
    Registry registry(device);
    Registry::Batch batch(registry);
    bool isWritten = batch.isOpen();
    for (const FirstValue &setting : updateSettings)
        isWritten = isWritten && registry.write(programKey, setting.name, setting.value);
    for (const FirstValue &setting : todaySettings)
        isWritten = isWritten && registry.write(todayItemKey, setting.name, setting.value);
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
