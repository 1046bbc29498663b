#pragma once

#include "platform/base/device_root.h"
#include "platform/sync/named_event.h"
#include "platform/sync/process_lock.h"

#include <QString>

#include <chrono>
#include <optional>

namespace tidebrook {

/// Lets one reader run on a device: a later one asks it to come forward, and ends. A claim
/// holds until it is given up or its process ends, by whatever cause. Readers of
/// other devices are not seen. For one thread; the device must have its folders.
///
/// The one that runs holds `run/FEEDLARK.lock`. It is asked by the event "FEEDLARK", which stays
/// set until it has taken the request.
class SingleInstance {
public:
    explicit SingleInstance(const DeviceRoot &device);

    /// Whether any process has claimed the device. Makes nothing.
    static bool isRunning(const DeviceRoot &device);

    enum class Claim {
        Mine,           ///< this process is the one that runs now
        BroughtForward, ///< another one runs, and has taken the request to come forward
        NoAnswer,       ///< another one runs, and did nothing about it in time
        Failed,         ///< the files that this needs could not be made
    };

    /// Claims it for this process. Where another one has it, that is asked to come forward, and
    /// handed the user's leave to do so (`XDG_ACTIVATION_TOKEN`, or else `DESKTOP_STARTUP_ID`, of
    /// the environment, which stays as it is). Then this waits until the request is taken or the
    /// other one has gone, which may have been closing down. Nothing but `run/` is touched.
    Claim claim(std::chrono::milliseconds timeout);

    bool isMine() const { return lock_.has_value(); }

    /// Readable while there is a request to come forward; only for watching. Negative when it
    /// could not be opened.
    int requestDescriptor() const { return request_.descriptor(); }

    /// Takes the request that is waiting, if this process is the one that runs and there is one:
    /// the process that made it ends then. The text is the leave that came with it, empty without
    /// one; a window takes it from `XDG_ACTIVATION_TOKEN` when it asks to be activated. Requests
    /// that come faster than they are taken are one. Does not wait.
    std::optional<QString> takeRequest();

    /// From now on another process may run. A request that was not taken is left to the one that
    /// made it, which then runs itself. `requestDescriptor` must no longer be watched.
    void giveUp();

private:
    bool take();
    bool ask();
    bool isLockable() const;
    void forgetToken();

    const QString lockPath_;
    const QString tokenPath_;
    NamedEvent request_;
    std::optional<ProcessLock> lock_;
};

} // namespace tidebrook
