#include "update/download_request.h"

#include "platform/pause.h"
#include "platform/wait_any.h"
#include "update/channel_file.h"
#include "update/request_file.h"

#include <QFile>
#include <QSaveFile>

namespace tidebrook {

namespace {

constexpr int signalPause = 100; // ms, between the request's being written and its being told

void writeRequest(const DeviceRoot &device, const RefreshJob &job) {
    const QString path = requestFilePath(device);
    const QByteArray bytes = encodeChannelFile(channelLine(job));
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return;
    // The request before this one must not be served in its stead.
    QFile(path).open(QIODevice::WriteOnly | QIODevice::Truncate);
}

} // namespace

DownloadAnswers::DownloadAnswers(const DeviceRoot &device)
    : done_(device, doneEvent, NamedEvent::Reset::Auto),
      failed_(device, failedEvent, NamedEvent::Reset::Auto) {}

void DownloadAnswers::forget() {
    done_.reset();
    failed_.reset();
}

DownloadAnswer DownloadAnswers::wait(std::chrono::milliseconds timeout, int inputDescriptor) {
    const WaitResult result = WaitAny({&done_, &failed_}, inputDescriptor, timeout);
    switch (result.kind) {
    case WaitResult::Kind::Event:
        return result.index == 0 ? DownloadAnswer::Done : DownloadAnswer::Failed;
    case WaitResult::Kind::Input:
        return DownloadAnswer::Input;
    case WaitResult::Kind::TimedOut:
    case WaitResult::Kind::Failed:
        break;
    }
    return DownloadAnswer::TimedOut;
}

bool requestDownload(const DeviceRoot &device, const RefreshJob &job, DownloadAnswers &answers) {
    writeRequest(device, job);
    Pause(signalPause);
    // From the writing on, the downloader answers no other request. What it had said before that
    // has long come by now.
    answers.forget();
    NamedEvent(device, requestEvent, NamedEvent::Reset::Manual).set();
    return true;
}

} // namespace tidebrook
