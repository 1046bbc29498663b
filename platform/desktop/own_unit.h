#pragma once

#include <QStringList>

namespace tidebrook {

/// The command that has a program outlive this process and stay out of its sandbox. It is `command`
/// itself, a program and its arguments, unless the user's service manager started this process as
/// a unit: all that a unit starts shares the unit's sandbox and may end with it. Then
/// `systemd-run` has the manager run `command` as another unit with these options, and ends when
/// that unit is started, with 0 if it is. Thread-safe.
///
/// Of the environment, the other unit gets the manager's, and what `--setenv` among the options
/// adds.
QStringList outsideOwnUnit(const QStringList &command, const QStringList &unitOptions);

} // namespace tidebrook
