#include "update/download_request.h"

#include "platform/base/descriptor.h"
#include "platform/base/plain_file.h"
#include "platform/base/replace_file.h"
#include "platform/sync/pause.h"
#include "platform/sync/wait_any.h"
#include "update/channel_file.h"

#include <fcntl.h>

namespace tidebrook {

namespace {

constexpr int signalPause = 100; // ms, between writing the request and setting its event

void writeRequest(const DeviceRoot &device, const RefreshJob &job) {
    const QString path = requestFilePath(device);
    // When it cannot be written, the request before it must not be served in its stead.
    if (!replaceFile(path, encodeChannelFile(channelLine(job))))
        const Descriptor emptied(openPlainFile(path, O_WRONLY | O_TRUNC));
}

} // namespace

DownloadAnswers::DownloadAnswers(const DeviceRoot &device)
    : device_(device), done_(device, doneEvent, NamedEvent::Reset::Auto),
      failed_(device, failedEvent, NamedEvent::Reset::Auto), request_(device) {}

void DownloadAnswers::expect() {
    done_.reset();
    failed_.reset();
    request_ = RequestFile(device_);
}

DownloadAnswer DownloadAnswers::wait(std::chrono::milliseconds timeout, int inputDescriptor) {
    const WaitResult result = WaitAny({&done_, &failed_}, inputDescriptor, timeout);
    if (result.kind == WaitResult::Kind::Input)
        return DownloadAnswer::Input;
    if (result.kind != WaitResult::Kind::Event)
        return DownloadAnswer::TimedOut;
    const bool isDone = result.index == 0;
    if (request_.isLatest())
        return isDone ? DownloadAnswer::Done : DownloadAnswer::Failed;
    // It is for the process that made the newer request, and waits for it too.
    (isDone ? done_ : failed_).set();
    return DownloadAnswer::TimedOut;
}

void requestDownload(const DeviceRoot &device, const RefreshJob &job, DownloadAnswers &answers) {
    {
        const RequestTurn turn(device);
        writeRequest(device, job);
        // From here on the downloader answers no other request.
        answers.expect();
    }
    Pause(signalPause);
    NamedEvent(device, requestEvent, NamedEvent::Reset::Manual).set();
}

} // namespace tidebrook
