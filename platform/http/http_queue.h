#pragma once

#include "platform/http/http.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace tidebrook {

/// What a queue of requests asks and reports, on the thread that runs it, by the addresses'
/// indices.
struct HttpQueueObserver {
    /// Asked when it is a request's turn: what is sent with it. Nothing leaves it out.
    std::function<std::optional<HttpValidators>(std::size_t)> begin;
    /// The answer to a request that was sent.
    std::function<void(std::size_t, HttpAnswer &)> takeAnswer;
};

/// Makes GETs as `httpGet` does, up to `parallel` at a time on the calling thread, in their order
/// but for those whose host is busy: one host is asked for one document at a time, also when other
/// hosts redirect to it. One that times out for what the observer did meanwhile is made once more.
/// Connections serve one request after another and are closed when it returns. False when
/// `limits.stop` was raised, or nothing can be sent at all: it returns at once then, and what has
/// no answer gets none.
bool httpGetAll(const std::vector<QString> &addresses, int parallel, const HttpLimits &limits,
                const HttpQueueObserver &observer);

} // namespace tidebrook
