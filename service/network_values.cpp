#include "service/network_values.h"

#include "store/settings_store.h"
#include "update/auto_schedule.h"

namespace tidebrook {

bool NetworkValues::update() {
    watch_.process();
    const NetworkState said = watch_.state();
    const bool hasBecomeFree = said.isFree == true && stored_.isFree != true;
    if (said.isFree != stored_.isFree && said.isFree && storeCradled(*said.isFree))
        stored_.isFree = said.isFree;
    if (said.isRoaming != stored_.isRoaming && said.isRoaming && storeRoaming(*said.isRoaming))
        stored_.isRoaming = said.isRoaming;
    return hasBecomeFree && stored_.isFree == true;
}

bool NetworkValues::storeCradled(bool isFree) {
    SettingsStore settings(registry_);
    const quint32 value = isFree ? 1 : 0;
    return settings.dword(hardwareStateKey, u"Cradled") == value ||
           settings.setDword(hardwareStateKey, u"Cradled", value);
}

// As one change, since the other bits are another program's.
bool NetworkValues::storeRoaming(bool isRoaming) {
    Registry::Batch batch(registry_);
    if (!batch.isOpen())
        return false;
    SettingsStore settings(registry_);
    const quint32 before = settings.dword(phoneStateKey, u"Status");
    const quint32 value = isRoaming ? before | roamingBit : before & ~roamingBit;
    return value == before ||
           (settings.setDword(phoneStateKey, u"Status", value) && batch.commit());
}

} // namespace tidebrook
