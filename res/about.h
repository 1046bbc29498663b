#pragma once

#include <QString>

namespace tidebrook {

/// The text of the About box: name, version, purpose and licence.
QString aboutText();

} // namespace tidebrook
