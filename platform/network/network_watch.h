#pragma once

#include <chrono>
#include <memory>
#include <optional>

namespace tidebrook {

/// What the daemons of the system bus say of the machine's connection. A value is nothing until its
/// daemon has said something.
struct NetworkState {
    std::optional<bool> isFree;    ///< it is connected, and not known to be metered
    std::optional<bool> isRoaming; ///< its phone is registered abroad

    bool operator==(const NetworkState &) const = default;
};

/// Follows NetworkManager and ModemManager on the system bus, where they run, from their start to
/// their end, and starts neither. Where there is no bus, it looks for one again after a minute.
/// Never blocks. For one thread.
///
/// What a daemon said holds on for `patience` after its end, since as a rule it is only restarted.
/// After that the network counts as free and the phone as one that does not roam: with nothing to
/// withdraw it, a bar must not stay for good.
class NetworkWatch {
public:
    explicit NetworkWatch(std::chrono::milliseconds patience = std::chrono::minutes(2));
    ~NetworkWatch();
    NetworkWatch(const NetworkWatch &) = delete;
    NetworkWatch &operator=(const NetworkWatch &) = delete;

    /// Readable when `process` is to be called; the same for the whole life. -1 when the process
    /// has no descriptor left. Never read it.
    int descriptor() const;

    /// Takes in what the daemons have sent. Call it also every minute or so.
    void process();

    NetworkState state() const;

    /// False while a daemon that runs may still answer for the first time. The first `process`
    /// after five seconds gives it up.
    bool isSettled() const;

private:
    class Bus;
    const std::unique_ptr<Bus> bus_;
};

} // namespace tidebrook
