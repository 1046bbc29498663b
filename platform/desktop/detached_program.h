#pragma once

#include <QString>

namespace tidebrook {

/// Runs a program, which outlives this one, without a shell. Waits 3 seconds at most; false when
/// the program cannot be started, or fails within that time. Thread-safe.
bool startDetached(const QString &program, const QString &argument);

} // namespace tidebrook
