#include "platform/sync/wait_any.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <vector>

namespace tidebrook {

namespace {

using std::chrono::milliseconds;

/// What is left of a time-out.
class TimeLeft {
public:
    explicit TimeLeft(std::optional<milliseconds> timeout) : timeout_(timeout) {}

    bool isOver() const { return timeout_ && left() <= milliseconds::zero(); }

    /// As poll takes it; a time too long for that is waited for in pieces.
    int forPoll() const {
        if (!timeout_)
            return -1;
        return static_cast<int>(std::clamp<milliseconds::rep>(left().count(), 0, INT_MAX));
    }

private:
    milliseconds left() const {
        const auto passed = std::chrono::steady_clock::now() - start_;
        return std::max(*timeout_, milliseconds::zero()) - std::chrono::floor<milliseconds>(passed);
    }

    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    const std::optional<milliseconds> timeout_;
};

/// The events' descriptors in order, and the input's behind them.
std::vector<pollfd> descriptorsOf(std::span<NamedEvent *const> events, int inputDescriptor) {
    std::vector<pollfd> descriptors;
    descriptors.reserve(events.size() + 1);
    for (const NamedEvent *event : events)
        descriptors.push_back({event->descriptor(), POLLIN, 0});
    descriptors.push_back({inputDescriptor, POLLIN, 0});
    return descriptors;
}

/// What poll has found; nothing when another process took it meanwhile.
std::optional<WaitResult> found(const std::vector<pollfd> &descriptors,
                                std::span<NamedEvent *const> events) {
    for (std::size_t i = 0; i < events.size(); ++i) {
        if ((descriptors[i].revents & POLLIN) != 0 && events[i]->test())
            return WaitResult{WaitResult::Kind::Event, static_cast<int>(i)};
    }
    for (const pollfd &descriptor : descriptors) {
        if ((descriptor.revents & POLLNVAL) != 0)
            return WaitResult{WaitResult::Kind::Failed, -1};
    }
    if (descriptors.back().revents != 0)
        return WaitResult{WaitResult::Kind::Input, -1};
    return std::nullopt;
}

} // namespace

WaitResult WaitAny(std::span<NamedEvent *const> events, int inputDescriptor,
                   std::optional<milliseconds> timeout) {
    std::vector<pollfd> descriptors = descriptorsOf(events, inputDescriptor);
    const TimeLeft time(timeout);
    for (;;) {
        const int count = poll(descriptors.data(), descriptors.size(), time.forPoll());
        if (count < 0 && errno != EINTR)
            return {WaitResult::Kind::Failed, -1};
        if (count > 0) {
            if (const auto result = found(descriptors, events))
                return *result;
        }
        if (time.isOver())
            return {WaitResult::Kind::TimedOut, -1};
    }
}

WaitResult WaitAny(std::initializer_list<NamedEvent *> events, int inputDescriptor,
                   std::optional<milliseconds> timeout) {
    return WaitAny(std::span<NamedEvent *const>(events.begin(), events.size()), inputDescriptor,
                   timeout);
}

} // namespace tidebrook
