#include "update/refresh.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <queue>
#include <system_error>
#include <thread>
#include <vector>

namespace tidebrook {

namespace {

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

// As many threads as there are to be had.
std::vector<std::jthread> startWorkers(qsizetype count, const std::function<void()> &work) {
    std::vector<std::jthread> workers;
    try {
        while (static_cast<qsizetype>(workers.size()) < count)
            workers.emplace_back(work);
    } catch (const std::system_error &) {
        // The system has no more; those that have begun do the work.
    }
    return workers;
}

} // namespace

RefreshResult refreshChannel(const RefreshTarget &target, const RefreshJob &job) {
    FeedFetcher fetcher(target.device, target.registry, target.limits, target.options);
    return storeFetched(target, job, fetcher, fetcher.fetch(job.url, job.channelName));
}

RefreshResult storeFetched(const RefreshTarget &target, const RefreshJob &job, FeedFetcher &fetcher,
                           bool isFetched) {
    RefreshResult result;
    const bool isChanged = target.store.changeAtOnce([&](SqlCommand &command) {
        // While the network was waited for, the channel may have been moved or deleted.
        QString category;
        if (!target.store.FindCategory(job.channelName, category))
            return;
        if (isFetched && category.isNull())
            fetcher.fail(NothingKnown);
        else if (isFetched)
            fetcher.parse(command, job.channelName, escapedCategory(category));
        result.isCounted =
            target.store.RecountChannel(escapedChannelName(job.channelName), &result.counts);
    });
    result.isCounted = result.isCounted && isChanged;
    if (!result.isCounted)
        fetcher.fail(DatabaseFailed);
    result.error = fetcher.error();
    result.toldError = fetcher.toldError();
    result.storedCount = isChanged ? fetcher.storedCount() : 0;
    return result;
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
    std::vector<std::jthread> workers = startWorkers(qMin(qsizetype{parallel}, jobs.size()), work);
    if (workers.empty())
        work();
    for (qsizetype i = 0; i < jobs.size(); ++i) {
        const qsizetype index = done.take();
        observer(index, results[static_cast<std::size_t>(index)]);
    }
    workers.clear(); // joined
    return {results.begin(), results.end()};
}

} // namespace tidebrook
