#pragma once

#include "platform/sync/named_event.h"

#include <chrono>
#include <initializer_list>

namespace tidebrook {

/// What ended a wait.
struct WaitResult {
    enum class Kind {
        Event,    ///< the event at `index` was seen or, if it resets by itself, taken
        Input,    ///< a descriptor can be read: there is input, or its other end is closed
        TimedOut, ///< nothing came in time
        Failed,   ///< waiting was not possible, as with a descriptor that is not open
    };
    Kind kind;
    int index; ///< of the event; -1 for everything else
};

/// Waits for the first of several events, for input and for the end of a time, which a change of
/// the date does not stretch. An event goes before input, and of several events the first one in
/// the list; the others stay as they are. An auto-reset event wakes one of those that wait for it;
/// the others wait on for what is left of their time. An event that is not open is never set.
///
/// The input's descriptors are not read, and -1 stands for none. A time-out of zero or less only
/// looks. Thread-safe.
WaitResult WaitAny(std::initializer_list<NamedEvent *> events,
                   std::initializer_list<int> inputDescriptors, std::chrono::milliseconds timeout);
WaitResult WaitAny(std::initializer_list<NamedEvent *> events, int inputDescriptor,
                   std::chrono::milliseconds timeout);

} // namespace tidebrook
