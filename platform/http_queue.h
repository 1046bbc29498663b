#pragma once

#include "platform/http.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace tidebrook {

/// What a queue of requests tells, on the thread that runs it, by the requests' indices.
struct HttpQueueObserver {
    /// Asked when it is a request's turn; false leaves it out.
    std::function<bool(std::size_t)> isWanted;
    /// The answer to a request that was sent.
    std::function<void(std::size_t, const HttpAnswer &)> takeAnswer;
};

/// Makes GETs as `httpGet` does, up to `parallel` at a time on the calling thread, in their order
/// but for those whose host is busy: one host is asked for one document at a time, also when other
/// hosts send on to it. Connections serve one request after another and are closed when it
/// returns. False when `limits.stop` was raised, or nothing can be sent at all: it returns at once
/// then, and what has no answer gets none.
bool httpGetAll(const std::vector<HttpRequest> &requests, int parallel, const HttpLimits &limits,
                const HttpQueueObserver &observer);

} // namespace tidebrook
