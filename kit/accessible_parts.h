#pragma once

namespace tidebrook {

/// Has Qt tell screen readers what the kit's own widgets are. Nothing of it is made before someone
/// asks. Further calls do nothing.
void installAccessibleParts();

} // namespace tidebrook
