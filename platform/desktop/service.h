#pragma once

#include "platform/base/device_root.h"

#include <QString>

#include <sys/types.h>

#include <chrono>
#include <optional>

namespace tidebrook {

/// How the activation of the service ended.
enum class Activation {
    Started,        ///< it answers requests now
    AlreadyRunning, ///< there is one, which may be about to begin answering, or about to end
    Failed,
};

/// The file that the device's service holds, by a `ProcessLock`, as long as it runs.
QString serviceLockPath(const DeviceRoot &device);

/// The process of the device's service.
std::optional<pid_t> runningService(const DeviceRoot &device);

/// Sees to it that the device has a running service. If need be it runs the program `feedlarkd`,
/// which is looked for beside the running program and then on the PATH, with `--home` and the
/// device root. That program puts the service, without the standard streams, into the background
/// and ends: with 0 as soon as the service answers requests, be it this one or another's, and with
/// anything else when there is none. It gets 10 seconds. After a failure `error` holds what it
/// wrote to its standard error, or why it was not run; otherwise `error` is left alone.
Activation activateService(const DeviceRoot &device, QString *error = nullptr);

/// Asks the device's service to end (SIGTERM) and waits for that; never for a service of its own
/// process. True when no service runs afterwards.
bool stopService(const DeviceRoot &device, std::chrono::milliseconds timeout);

} // namespace tidebrook
