#pragma once

struct sd_bus_message;

namespace tidebrook {

// What the answers of the daemons say. A property that is missing or of another type counts as
// unknown.

/// Of NetworkManager's properties: whether the machine is connected, and not known to be metered.
bool isFreeNetwork(sd_bus_message *properties);

/// Of ModemManager's objects: whether a modem that is connected roams or, while none is connected,
/// one that is registered does.
bool isRoamingPhone(sd_bus_message *objects);

} // namespace tidebrook
