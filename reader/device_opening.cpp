#include "reader/device_opening.h"

#include "app/data_jobs.h"
#include "res/strings.h"
#include "store/error_codes.h"

#include <system_error>

namespace tidebrook {

namespace {

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
    return {std::move(device), messageId};
}

std::future<DeviceOpening::Opened> begin(const DeviceRoot &root) {
    try {
        return std::async(std::launch::async, openDevice, root);
    } catch (const std::system_error &) { // there is no thread
        return std::async(std::launch::deferred, openDevice, root);
    }
}

} // namespace

DeviceOpening::DeviceOpening(const DeviceRoot &deviceRoot)
    : root(deviceRoot), opened_(begin(deviceRoot)) {}

} // namespace tidebrook
