#pragma once

#include <QString>

namespace tidebrook {

/// What the About box tells: name and version, what the program is, and its licence. Plain text,
/// some lines.
QString aboutText();

} // namespace tidebrook
