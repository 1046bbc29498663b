#pragma once

#include "platform/http/http.h"
#include "platform/sql/registry.h"

#include <QtGlobal>

namespace tidebrook {

/// Records in the registry's "ERRORNO" why a direct download ended like this, and returns the code;
/// 0 when it was stopped, which is not recorded.
quint32 recordDownloadFailure(Registry &registry, HttpProgress progress, const HttpLimits &limits);

} // namespace tidebrook
