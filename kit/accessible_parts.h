#pragma once

namespace tidebrook {

/// Gives screen readers the roles and texts of the kit's own widgets. Nothing is made before a
/// screen reader asks. Further calls do nothing.
void installAccessibleParts();

} // namespace tidebrook
