#include "service/request_server.h"

#include "platform/spare_memory.h"
#include "store/error_codes.h"
#include "store/update_state.h"
#include "update/channel_update.h"
#include "update/update_history.h"

#include <algorithm>
#include <system_error>

namespace tidebrook {

namespace {

constexpr std::size_t threadLimit = 32;

} // namespace

RequestServer::RequestServer(const DeviceRoot &device, Registry &registry,
                             const QString &todayItemKey, ServiceLog &log, const StopSignal &stop)
    : device_(device), registry_(registry), todayItemKey_(todayItemKey), log_(log), stop_(stop) {}

RequestServer::~RequestServer() {
    std::vector<std::jthread> threads;
    {
        const std::lock_guard lock(mutex_);
        threads = std::move(threads_);
    }
    threads.clear(); // joined
}

void RequestServer::serveLatest() {
    RequestFile request(device_);
    const std::lock_guard lock(mutex_);
    // It may have been read already on the heels of an earlier one, before it was told of.
    if (std::find(underWay_.begin(), underWay_.end(), request) != underWay_.end() ||
        std::find(waiting_.begin(), waiting_.end(), request) != waiting_.end())
        return;
    waiting_.push_back(std::move(request));
    std::erase_if(threads_, [this](const std::jthread &thread) {
        return std::erase(ended_, thread.get_id()) > 0;
    });
    if (threads_.size() >= threadLimit)
        return;
    try {
        threads_.emplace_back([this] { work(); });
    } catch (const std::system_error &error) {
        log_.error(QStringLiteral("no thread to serve a request: %1")
                       .arg(QString::fromLocal8Bit(error.what())));
    }
}

void RequestServer::work() {
    while (const std::optional<RequestFile> request = takeNewest()) {
        serve(*request);
        const std::lock_guard lock(mutex_);
        std::erase(underWay_, *request);
    }
}

std::optional<RequestFile> RequestServer::takeNewest() {
    const std::lock_guard lock(mutex_);
    if (waiting_.empty()) {
        ended_.push_back(std::this_thread::get_id());
        if (underWay_.empty())
            giveBackMemory();
        return std::nullopt;
    }
    RequestFile request = std::move(waiting_.back());
    waiting_.pop_back();
    underWay_.push_back(request);
    return request;
}

void RequestServer::serve(const RequestFile &request) {
    const std::optional<RefreshJob> &job = request.job();
    if (!job)
        log_.warning(QStringLiteral("the request file holds no request"));
    const RefreshResult result = job ? update(*job) : RefreshResult{NothingKnown, 0, {}, false};
    if (!answerDownload(device_, registry_, request, result.error))
        log_.detail(QStringLiteral("a newer request has come; no answer to this one"));
    if (!job)
        return;
    log_.result(job->channelName, result.error, result.storedCount);
    if (!stop_.isRaised()) {
        UpdateStateStore states(device_);
        noteRequested(states, *job, result);
    }
}

RefreshResult RequestServer::update(const RefreshJob &job) {
    // A store of its own: its error field and its session belong to this request alone.
    FeedStore store(device_, registry_, todayItemKey_);
    RefreshResult result;
    HttpLimits limits;
    limits.stop = &stop_;
    if (store.Open())
        updateChannel({device_, registry_, store, limits}, job, &result);
    result.error = store.error();
    store.PublishTotalUnread();
    return result;
}

} // namespace tidebrook
