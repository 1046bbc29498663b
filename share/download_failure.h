#pragma once

#include "platform/http/http.h"

#include <QtGlobal>

namespace tidebrook {

/// The code of a direct download that got no further than this; 0 when it was called off, which
/// nobody is to be told of.
quint32 downloadFailure(HttpProgress progress, const HttpLimits &limits);

} // namespace tidebrook
