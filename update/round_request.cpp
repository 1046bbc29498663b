#include "update/round_request.h"

#include "platform/desktop/service.h"
#include "platform/sync/named_event.h"

namespace tidebrook {

bool requestRound(const DeviceRoot &device) {
    // The request would be lost while no downloader holds the event open.
    return activateService(device) != Activation::Failed &&
           NamedEvent(device, roundRequestEvent, NamedEvent::Reset::Auto).set();
}

} // namespace tidebrook
