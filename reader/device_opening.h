#pragma once

#include "platform/base/device_root.h"
#include "subscriptions/device.h"

#include <future>
#include <memory>

namespace tidebrook {

/// Opens a device on a thread of its own, from its making on.
class DeviceOpening {
public:
    explicit DeviceOpening(const DeviceRoot &deviceRoot);

    struct Opened {
        std::unique_ptr<Device> device;
        int messageId = 0; ///< the string of what is to be told to the user, or 0
    };

    /// Waits until it is done, and hands over what was opened. Once, on any thread.
    Opened take() { return opened_.get(); }

    const DeviceRoot root;

private:
    std::future<Opened> opened_; // whose end waits for the thread
};

} // namespace tidebrook
