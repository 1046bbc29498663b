#include "update/refresh.h"

#include "feed/feed_fetcher.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <queue>
#include <thread>
#include <vector>

namespace tidebrook {

namespace {

constexpr quint32 databaseError = 1001;

// The workers take the next job from a common counter and put its index here when it is done.
class DoneQueue {
public:
    void put(qsizetype index) {
        const std::lock_guard lock(mutex_);
        indices_.push(index);
        isFilled_.notify_one();
    }

    qsizetype take() {
        std::unique_lock lock(mutex_);
        isFilled_.wait(lock, [this] { return !indices_.empty(); });
        const qsizetype index = indices_.front();
        indices_.pop();
        return index;
    }

private:
    std::mutex mutex_;
    std::condition_variable isFilled_;
    std::queue<qsizetype> indices_;
};

} // namespace

RefreshResult refreshChannel(const RefreshTarget &target, const RefreshJob &job) {
    FeedFetcher fetcher(target.device, target.registry, target.store, target.limits);
    const bool isFetched = fetcher.fetch(job.url, job.channelName);
    ReadFlagCounts counts;
    bool isCounted = false;
    const bool isStored = target.store.changeAtOnce([&](SqlCommand &command) {
        if (isFetched)
            fetcher.parse(command, job.channelName, job.category);
        isCounted = target.store.RecountChannel(
            escapeFeedText(job.channelName, channelNameCapacity), &counts);
    });
    if (isStored && isCounted)
        return {fetcher.error(), fetcher.storedCount(), counts};
    SetLastErrorCode(target.registry, databaseError);
    return {databaseError, 0, {}};
}

QList<RefreshResult>
refreshChannels(const RefreshTarget &target, const QList<RefreshJob> &jobs, int parallel,
                const std::function<void(qsizetype, const RefreshResult &)> &observer) {
    std::vector<RefreshResult> results(static_cast<std::size_t>(jobs.size()));
    std::atomic<qsizetype> nextJob = 0;
    DoneQueue done;
    const auto work = [&] {
        for (qsizetype index = nextJob++; index < jobs.size(); index = nextJob++) {
            results[static_cast<std::size_t>(index)] = refreshChannel(target, jobs[index]);
            done.put(index);
        }
    };
    std::vector<std::jthread> workers;
    for (qsizetype i = 0; i < qMin(qsizetype{parallel}, jobs.size()); ++i)
        workers.emplace_back(work);
    for (qsizetype i = 0; i < jobs.size(); ++i) {
        const qsizetype index = done.take();
        observer(index, results[static_cast<std::size_t>(index)]);
    }
    workers.clear(); // joined
    return {results.begin(), results.end()};
}

} // namespace tidebrook
