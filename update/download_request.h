#pragma once

#include "platform/device_root.h"
#include "platform/named_event.h"
#include "update/refresh_job.h"

#include <chrono>

namespace tidebrook {

/// Asks the downloader to update a channel now: writes the one request file, which so holds only
/// the latest request, and sets the event "RSS_NONAUTODL". Waits for nobody but pauses between
/// the two. True also when writing failed: the downloader then finds nothing to do and says so.
bool requestDownload(const DeviceRoot &device, const RefreshJob &job);

/// How a request was answered.
enum class DownloadAnswer {
    Done,
    Failed,   ///< the code is in the registry's "ERRORNO"
    TimedOut, ///< nobody answered
    Input,    ///< the input came first; the answer, if there will be one, is for nobody
};

/// The two events by which the downloader answers, held open by whoever waits for them: an answer
/// that nobody holds them for is gone. For one thread, one request after another.
class DownloadAnswers {
public:
    explicit DownloadAnswers(const DeviceRoot &device);

    /// What `requestDownload` does, but for the caller: an answer to an earlier request of his, or
    /// of somebody before him, is not taken for the one to this.
    void request(const RefreshJob &job);

    /// Waits for the answer; `inputDescriptor` as WaitAny takes it, -1 for none.
    DownloadAnswer wait(std::chrono::milliseconds timeout, int inputDescriptor = -1);

private:
    const DeviceRoot device_;
    NamedEvent done_;
    NamedEvent failed_;
};

} // namespace tidebrook
