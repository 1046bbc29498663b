#pragma once

#include <QString>

namespace tidebrook {

/// Where the system's program of this name lies: beside the running program, or else on the PATH.
/// Empty when there is none. Thread-safe.
QString ownProgram(const QString &name);

} // namespace tidebrook
