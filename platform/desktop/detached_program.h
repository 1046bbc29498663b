#pragma once

#include <QString>
#include <QStringList>

#include <chrono>

namespace tidebrook {

/// Runs a program, with arguments that no shell looks at, which goes its own way and outlives this
/// one. False when it cannot be started, or fails within `timeout`, which is how long this waits
/// at most. Thread-safe.
bool startDetached(const QString &program, const QStringList &arguments,
                   std::chrono::milliseconds timeout);

} // namespace tidebrook
