#pragma once

#include <QString>
#include <QStringList>

#include <chrono>

namespace tidebrook {

/// Runs a program, which outlives this one, without a shell. Waits `timeout` at most; false when
/// the program cannot be started, or fails within that time. Thread-safe.
bool startDetached(const QString &program, const QStringList &arguments,
                   std::chrono::milliseconds timeout);

} // namespace tidebrook
