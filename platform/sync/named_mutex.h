#pragma once

#include "platform/base/descriptor.h"
#include "platform/base/device_root.h"

#include <QStringView>

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <memory>

namespace tidebrook {

/// A mutex that processes share by its name, for short waits between threads and processes: it
/// wakes the next one at once, where a `FileLock` looks again and again. The thread that has it may
/// lock it again, and then has to unlock it as often. When its holder ends without unlocking it,
/// however that happens, the next one gets it: what the mutex guards must be sound at every moment.
///
/// It lies in a file, `run/NAME.mutex`, which is made when it is missing and must never be
/// removed. Thread-safe. An object must not end while another thread of this process has locked
/// the mutex through it; whatever the ending thread itself has locked is unlocked.
class NamedMutex {
public:
    /// `name` is a plain file name.
    NamedMutex(const DeviceRoot &device, QStringView name);
    ~NamedMutex();
    NamedMutex(const NamedMutex &) = delete;
    NamedMutex &operator=(const NamedMutex &) = delete;

    /// False when the file could not be had or there was no room for it. Such a mutex cannot be
    /// locked.
    bool isOpen() const { return shared_ != nullptr; }

    /// Waits for the mutex as long as `timeout`; zero or less only tries. True when this thread has
    /// the mutex now.
    bool lock(std::chrono::milliseconds timeout);

    /// False, and nothing is changed, when this thread has not locked the mutex through this
    /// object, as after a `lock` that was not successful.
    bool unlock();

private:
    struct Shared;
    struct Unmap {
        void operator()(Shared *shared) const;
    };
    using Mapping = std::unique_ptr<Shared, Unmap>;

    static Mapping map(int file);
    static Mapping share(int file);
    static bool initialise(int file);

    const Descriptor file_;
    const Mapping shared_;
    std::atomic<pid_t> owner_ = 0; // the thread that has locked the mutex through this object,
    int depth_ = 0;                // and how often; guarded by the mutex
};

} // namespace tidebrook
