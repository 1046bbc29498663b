#include "service/request_server.h"

#include "platform/base/spare_memory.h"
#include "store/error_codes.h"
#include "store/update_state.h"
#include "update/channel_update.h"
#include "update/update_history.h"

#include <algorithm>

namespace tidebrook {

namespace {

constexpr int threadLimit = 32;

} // namespace

RequestServer::RequestServer(const DeviceRoot &device, Registry &registry,
                             const QString &todayItemKey, ServiceLog &log, const StopSignal &stop)
    : device_(device), registry_(registry), todayItemKey_(todayItemKey), log_(log), stop_(stop) {}

void RequestServer::serveLatest() {
    RequestFile request(device_);
    const std::lock_guard lock(mutex_);
    // It may have been read already, when an earlier one was.
    if (std::ranges::count(underWay_, request) + std::ranges::count(waiting_, request) > 0)
        return;
    waiting_.push_back(std::move(request));
    if (workerCount_ == threadLimit)
        return;
    if (threads_.start([this] { work(); }))
        ++workerCount_;
    else
        log_.error(QStringLiteral("no thread to serve a request"));
}

void RequestServer::work() {
    while (const std::optional<RequestFile> request = takeNewest()) {
        const RefreshResult result =
            request->job() ? update(*request->job()) : RefreshResult{NothingKnown, 0, {}, false};
        {
            // Before the answer, after which the same file may be requested again.
            const std::lock_guard lock(mutex_);
            std::erase(underWay_, *request);
        }
        if (!answerDownload(device_, registry_, *request, result.toldError))
            log_.detail(QStringLiteral("a newer request has come; no answer to this one"));
        note(*request, result);
    }
}

std::optional<RequestFile> RequestServer::takeNewest() {
    const std::lock_guard lock(mutex_);
    if (waiting_.empty()) {
        --workerCount_;
        if (underWay_.empty())
            giveBackMemory();
        return std::nullopt;
    }
    RequestFile request = std::move(waiting_.back());
    waiting_.pop_back();
    underWay_.push_back(request);
    return request;
}

void RequestServer::note(const RequestFile &request, const RefreshResult &result) {
    if (!request.job()) {
        log_.warning(QStringLiteral("the request file holds no request"));
        return;
    }
    log_.result(request.job()->channelName, result);
    if (stop_.isRaised())
        return;
    UpdateStateStore states(device_);
    noteRequested(states, *request.job(), result);
}

RefreshResult RequestServer::update(const RefreshJob &job) {
    // A store of its own: its error field and its session belong to this request alone.
    FeedStore store(device_, registry_, todayItemKey_);
    RefreshResult result;
    HttpLimits limits;
    limits.stop = &stop_;
    if (store.Open())
        updateChannel({device_, registry_, store, limits}, job, &result);
    if (store.error() != result.error)
        result.error = result.toldError = store.error();
    store.PublishTotalUnread();
    return result;
}

} // namespace tidebrook
