#pragma once

#include "platform/base/descriptor.h"
#include "platform/base/device_root.h"

#include <QStringView>

namespace tidebrook {

/// An event that processes share by its name: set or not set. It stays as it is as long as any
/// process holds it open, and is clear once no process does. All processes must open a name with
/// the same kind of reset. Thread-safe; `WaitAny` waits for it.
///
/// It is a FIFO, `run/NAME.event`, that is set while there is a byte in it. The file is made when
/// it is missing and must never be removed: those who hold it and those who come later would
/// share nothing. A forked child holds the event open too.
class NamedEvent {
public:
    enum class Reset {
        Manual, ///< stays set, for every waiting process, until `reset`
        Auto,   ///< one waiter takes it, which resets it
    };

    /// `name` is a plain file name.
    NamedEvent(const DeviceRoot &device, QStringView name, Reset reset);

    /// False when there is no FIFO to be had at its place. Such an event is never set.
    bool isOpen() const { return isFifo_; }

    /// What the setter did before is visible to every process that sees or takes the event. Setting
    /// it while it is set changes nothing, and the call does not block. False when it is not set
    /// afterwards.
    bool set();
    void reset();

    /// Whether it is set, without waiting; an auto-reset event is taken by that, and so is seen
    /// set by one alone of all who ask.
    bool test();

    /// For waiting together with other descriptors: readable while the event is set. Never read
    /// it or write to it. Negative when it is not open.
    int descriptor() const { return isFifo_ ? fifo_.number() : -1; }

private:
    bool isSet() const;
    bool take();

    const Descriptor fifo_;
    const bool isFifo_;
    const Reset reset_;
};

} // namespace tidebrook
