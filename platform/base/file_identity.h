#pragma once

#include <QList>
#include <QStringList>

#include <sys/types.h>

#include <utility>

namespace tidebrook {

/// Which files lie at some paths: the lists differ when a file was replaced by another. Empty when
/// one is missing.
using FileIdentities = QList<std::pair<dev_t, ino_t>>;
FileIdentities identitiesOf(const QStringList &paths);

} // namespace tidebrook
