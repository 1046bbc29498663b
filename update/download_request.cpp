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

void signalRequest(const DeviceRoot &device) {
    NamedEvent(device, requestEvent, NamedEvent::Reset::Manual).set();
}

} // namespace

bool requestDownload(const DeviceRoot &device, const RefreshJob &job) {
    writeRequest(device, job);
    Pause(signalPause);
    signalRequest(device);
    return true;
}

DownloadAnswers::DownloadAnswers(const DeviceRoot &device)
    : device_(device), done_(device, doneEvent, NamedEvent::Reset::Auto),
      failed_(device, failedEvent, NamedEvent::Reset::Auto) {}

void DownloadAnswers::request(const RefreshJob &job) {
    writeRequest(device_, job);
    Pause(signalPause);
    // From here on only this request is answered: the downloader answers none but that in the
    // file. What an earlier one was answered with is still in the events.
    done_.reset();
    failed_.reset();
    signalRequest(device_);
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

} // namespace tidebrook
