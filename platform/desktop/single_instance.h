#pragma once

#include "platform/base/device_root.h"
#include "platform/sync/named_event.h"
#include "platform/sync/process_lock.h"

#include <QString>

#include <chrono>
#include <optional>

namespace tidebrook {

/// Lets one instance of a program run on a device: a later one asks it to come forward, and ends. A
/// claim holds until this object or its process ends. For one thread; the device must have its
/// folders.
///
/// The claim is the lock `run/NAME.lock`, NAME being the program's. A request is the event NAME,
/// which stays set until the running instance takes it.
class SingleInstance {
public:
    /// `name` is a plain file name; the reader's is "FEEDLARK".
    explicit SingleInstance(const DeviceRoot &device, QStringView name = readerName);

    /// Whether any process has claimed the device for the reader. Makes nothing.
    static bool isRunning(const DeviceRoot &device);

    enum class Claim {
        Mine,           ///< this process is the one that runs now
        BroughtForward, ///< another one runs, and has taken the request to come forward
        NoAnswer,       ///< another one runs, and has not taken the request in time
        Failed,         ///< the files that this needs could not be made
    };

    /// Claims the device for this process. Where another process has it, asks that one to come
    /// forward, with the activation token of the environment (`XDG_ACTIVATION_TOKEN`, or else
    /// `DESKTOP_STARTUP_ID`), and waits until it takes the request or ends. Nothing but `run/` is
    /// touched.
    Claim claim(std::chrono::milliseconds timeout);

    /// Readable while there is a request, for watching only; negative when it could not be opened.
    int requestDescriptor() const { return request_.descriptor(); }

    /// Takes the request that is waiting, if there is one and this process runs: the process that
    /// made it ends then. The text is its activation token, which may be empty; a window takes it
    /// from `XDG_ACTIVATION_TOKEN` when it asks to be activated. Several requests may be taken as
    /// one. Does not wait.
    std::optional<QString> takeRequest();

private:
    static constexpr QStringView readerName = u"FEEDLARK";

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
