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

/// The file of the `ProcessLock` that the device's service holds while it runs.
QString serviceLockPath(const DeviceRoot &device);

/// The process of the device's service.
std::optional<pid_t> runningService(const DeviceRoot &device);

/// Starts the device's service where none runs: with the program `feedlarkd` beside the running
/// program, or else on the PATH, and the arguments `--home` and the device root. That program puts
/// the service into the background and ends: with 0 as soon as a service answers requests, and with
/// anything else when there is none. It gets 10 seconds. The service outlives this process. After a
/// failure `error` is what was written to standard error, or why the program was not run.
Activation activateService(const DeviceRoot &device, QString *error = nullptr);

/// Asks the device's service to end (SIGTERM) and waits for that. True when no service runs
/// afterwards.
bool stopService(const DeviceRoot &device, std::chrono::milliseconds timeout);

} // namespace tidebrook
