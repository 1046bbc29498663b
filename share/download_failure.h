#pragma once

#include "platform/http/http.h"

#include <QtGlobal>

namespace tidebrook {

/// The code of a direct download that ended like this; 0 when it was stopped, which is not
/// reported.
quint32 downloadFailure(HttpProgress progress, const HttpLimits &limits);

} // namespace tidebrook
