#pragma once

#include "platform/base/device_root.h"
#include "platform/sync/named_event.h"
#include "update/refresh_job.h"
#include "update/request_file.h"

#include <chrono>

namespace tidebrook {

/// How long the answer to a request is waited for where nothing else is asked for.
inline constexpr std::chrono::seconds usualAnswerTimeout(60);

/// How a request was answered.
enum class DownloadAnswer {
    Done,
    Failed,   ///< the code is in the registry's "ERRORNO"
    TimedOut, ///< no answer came, or will: another program has made a newer request
    Input,    ///< the input came first; a later answer is ignored
};

/// The two events by which the downloader answers, held open by a process that waits for them: an
/// answer is lost while no process holds its event open. For one thread, one request after another.
class DownloadAnswers {
public:
    explicit DownloadAnswers(const DeviceRoot &device);

    /// From now on the request that the request file holds is the one to be answered: answers to
    /// earlier ones, of any process, are forgotten.
    void expect();

    /// Waits for the answer to that; `inputDescriptor` as WaitAny takes it, -1 for none.
    DownloadAnswer wait(std::chrono::milliseconds timeout, int inputDescriptor = -1);

private:
    const DeviceRoot device_;
    NamedEvent done_;
    NamedEvent failed_;
    RequestFile request_;
};

/// Asks the downloader to update a channel now: writes the one request file, which so holds only
/// the latest request, and sets the event "RSS_NONAUTODL", with a pause between the two. What
/// `answers` get from then on is the answer to this request. When writing failed, the downloader
/// finds no request and answers with a failure.
void requestDownload(const DeviceRoot &device, const RefreshJob &job, DownloadAnswers &answers);

} // namespace tidebrook
