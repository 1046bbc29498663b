#include "reader/device_opening.h"

#include <system_error>

namespace tidebrook {

namespace {

DeviceOpening::Opened openDevice(const DeviceRoot &root) {
    auto device = std::make_unique<DeviceParts>(root);
    const int messageId = device->open();
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
