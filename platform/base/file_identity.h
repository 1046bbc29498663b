#pragma once

#include <QList>
#include <QPair>
#include <QStringList>

#include <sys/types.h>

namespace tidebrook {

/// Which files lie at some paths: two lists are equal when they are the same files, and not others
/// that were put in their place. Empty when one of them is missing.
using FileIdentities = QList<QPair<dev_t, ino_t>>;
FileIdentities identitiesOf(const QStringList &paths);

} // namespace tidebrook
