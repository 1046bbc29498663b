#pragma once

#include "platform/network/network_watch.h"
#include "platform/sql/registry.h"

namespace tidebrook {

/// Keeps the platform's values "Cradled" and "Status" as the daemons of the system say: "Cradled"
/// is 1 while the machine is connected and not metered, and "Status" has its roaming bit while the
/// phone roams. Where a daemon has said nothing, its value stays as it is. What another program
/// writes stays until the daemon says something else. For one thread.
class NetworkValues {
public:
    /// The registry outlives it.
    explicit NetworkValues(Registry &registry) : registry_(registry) {}

    /// As that of NetworkWatch.
    int descriptor() const { return watch_.descriptor(); }
    /// Takes in what the daemons have sent, and stores what has changed. What the registry does not
    /// take is stored by the next call. True when the network has become free by it.
    bool update();
    /// Whether the values are those of now: no daemon may still say something for the first time.
    bool isSettled() const { return watch_.isSettled(); }

private:
    bool storeCradled(bool isFree);
    bool storeRoaming(bool isRoaming);

    Registry &registry_;
    NetworkWatch watch_;
    NetworkState stored_;
};

} // namespace tidebrook
