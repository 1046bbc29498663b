#pragma once

#include "update/refresh.h"

namespace tidebrook {

/// Refreshes one channel as an answer to a request: with the fixed pauses before and after (a
/// second each), and with the database closed and opened again at the end. Takes up to 52
/// seconds; call it on a thread that may wait.
///
/// Returns whether the database is open again and the channel counted; false at once when a text
/// of the job is null. The store's error field, which is cleared at the start, has the code of the
/// refresh's failure, and `result` how it ended.
bool updateChannel(const RefreshTarget &target, const RefreshJob &job,
                   RefreshResult *result = nullptr);

} // namespace tidebrook
