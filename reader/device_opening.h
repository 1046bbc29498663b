#pragma once

#include "platform/base/device_root.h"
#include "platform/sync/tasks.h"
#include "subscriptions/device.h"

#include <QByteArray>

#include <memory>

namespace tidebrook {

/// Opens a device on a thread of its own, from construction on. Used by the user-interface thread.
class DeviceOpening {
public:
    explicit DeviceOpening(const DeviceRoot &deviceRoot);

    struct Opened {
        std::unique_ptr<Device> device;
        int messageId = 0;      ///< the string of the problem to show to the user, or 0
        QByteArray windowPlace; ///< as `storeWindowPlace` stored it; empty without one
    };

    /// Runs an event loop until the device is open, and hands over what was opened, once.
    Opened take();

    const DeviceRoot root;

private:
    Opened opened_;
    Tasks tasks_{Tasks::Serial};
};

/// Stores where the window was closed, for the next start. Without a registry nothing is stored.
void storeWindowPlace(Device &device, const QByteArray &place);

} // namespace tidebrook
