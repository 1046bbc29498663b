#include "reader/device_opening.h"

#include "app/data_jobs.h"
#include "res/strings.h"
#include "store/error_codes.h"

#include <QEventLoop>

namespace tidebrook {

namespace {

constexpr QStringView windowPlaceValue = u"WindowPlace";
constexpr qsizetype longestPlace = 512;

// The string that says what is wrong, or 0. A registry that cannot be read is reported by the list
// of categories.
int problemOf(Device &device, DeviceFault fault) {
    switch (fault) {
    case DeviceFault::CategoriesNotListed:
        return fileProblemString;
    case DeviceFault::StoreFailed:
        SetLastErrorCode(device.registry, device.store.error());
        return device.store.error() == SeedFileMissing ? fileProblemString : databaseProblemString;
    case DeviceFault::RegistryUnreadable:
    case DeviceFault::None:
        break;
    }
    return 0;
}

DeviceOpening::Opened openDevice(const DeviceRoot &root) {
    auto device = std::make_unique<Device>(root);
    const int messageId = problemOf(*device, device->open(channelsLockTimeout));
    const QString place = device->settings.text(programKey, windowPlaceValue, longestPlace);
    return {std::move(device), messageId, QByteArray::fromBase64(place.toLatin1())};
}

} // namespace

DeviceOpening::DeviceOpening(const DeviceRoot &deviceRoot) : root(deviceRoot) {
    const bool isBegun = tasks_.ask(
        &tasks_, [deviceRoot] { return openDevice(deviceRoot); },
        [this](Opened opened) { opened_ = std::move(opened); });
    if (!isBegun) // there is no thread
        opened_ = openDevice(root);
}

void storeWindowPlace(Device &device, const QByteArray &place) {
    device.registry.write(programKey, windowPlaceValue, QString::fromLatin1(place.toBase64()));
}

DeviceOpening::Opened DeviceOpening::take() {
    QEventLoop loop;
    QObject::connect(&tasks_, &Tasks::done, &loop, &QEventLoop::quit);
    if (opened_.device == nullptr)
        loop.exec();
    return std::move(opened_);
}

} // namespace tidebrook
