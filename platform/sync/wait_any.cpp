#include "platform/sync/wait_any.h"

#include <QDeadlineTimer>

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <optional>
#include <vector>

namespace tidebrook {

namespace {

using Events = std::initializer_list<NamedEvent *>;
using Inputs = std::initializer_list<int>;

/// The events' descriptors in order, and the input's behind them.
std::vector<pollfd> descriptorsOf(Events events, Inputs inputs) {
    std::vector<pollfd> descriptors;
    descriptors.reserve(events.size() + inputs.size());
    for (const NamedEvent *event : events)
        descriptors.push_back({event->descriptor(), POLLIN, 0});
    for (const int input : inputs)
        descriptors.push_back({input, POLLIN, 0});
    return descriptors;
}

/// What poll has found; nothing when another process took it meanwhile.
std::optional<WaitResult> found(const std::vector<pollfd> &descriptors, Events events) {
    for (std::size_t i = 0; i < events.size(); ++i) {
        if ((descriptors[i].revents & POLLIN) != 0 && std::data(events)[i]->test())
            return WaitResult{WaitResult::Kind::Event, static_cast<int>(i)};
    }
    for (const pollfd &descriptor : descriptors) {
        if ((descriptor.revents & POLLNVAL) != 0)
            return WaitResult{WaitResult::Kind::Failed, -1};
    }
    for (std::size_t i = events.size(); i < descriptors.size(); ++i) {
        if (descriptors[i].revents != 0)
            return WaitResult{WaitResult::Kind::Input, -1};
    }
    return std::nullopt;
}

} // namespace

WaitResult WaitAny(Events events, int inputDescriptor, std::chrono::milliseconds timeout) {
    return WaitAny(events, Inputs{inputDescriptor}, timeout);
}

WaitResult WaitAny(Events events, Inputs inputs, std::chrono::milliseconds timeout) {
    std::vector<pollfd> descriptors = descriptorsOf(events, inputs);
    const QDeadlineTimer end(std::max(timeout, std::chrono::milliseconds::zero()));
    for (;;) {
        // A time too long for poll is waited for in pieces.
        const int left = static_cast<int>(qMin(end.remainingTime(), qint64{INT_MAX}));
        const int count = poll(descriptors.data(), descriptors.size(), left);
        if (count < 0 && errno != EINTR)
            return {WaitResult::Kind::Failed, -1};
        if (count > 0) {
            if (const auto result = found(descriptors, events))
                return *result;
        }
        if (end.hasExpired())
            return {WaitResult::Kind::TimedOut, -1};
    }
}

} // namespace tidebrook
