#include "platform/http_queue.h"

#include "platform/http_transfer.h"
#include "platform/stop_signal.h"

#include <algorithm>
#include <list>

namespace tidebrook {

namespace {

constexpr int longestPoll = 60'000; // ms; curl asks for less when it has to do something

QByteArray hostOf(const HttpRequest &request) {
    const CurlUrl url = parseUrl(request.url);
    return url ? partOf(url, CURLUPART_HOST).toLower() : QByteArray();
}

class Queue {
public:
    Queue(const std::vector<HttpRequest> &requests, const HttpLimits &limits,
          const HttpQueueObserver &observer)
        : requests_(requests), limits_(limits), observer_(observer), multi_(newMulti()) {
        for (std::size_t i = 0; i < requests.size(); ++i)
            waiting_.push_back({i, hostOf(requests[i])});
    }

    ~Queue() {
        for (Running &running : running_)
            curl_multi_remove_handle(multi_.get(), running.get.transfer().handle());
    }

    Queue(const Queue &) = delete;
    Queue &operator=(const Queue &) = delete;

    void run(int parallel) {
        if (!multi_)
            return;
        // Redirects may lead several requests to one host; curl has them wait for each other.
        curl_multi_setopt(multi_.get(), CURLMOPT_MAX_HOST_CONNECTIONS, 1L);
        curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, static_cast<long>(parallel));
        while (!isStopped()) {
            startAsMany(static_cast<std::size_t>(parallel));
            int count = 0;
            if (running_.empty() || curl_multi_perform(multi_.get(), &count) != CURLM_OK)
                return;
            if (!takeEnded())
                wait();
        }
    }

private:
    struct Waiting {
        std::size_t index;
        QByteArray host;
    };
    struct Running {
        Running(Waiting &&what, const HttpRequest &request, const HttpLimits &limits)
            : waiting(std::move(what)), get(request, limits) {}
        Waiting waiting;
        HttpGet get;
    };

    bool isStopped() const { return limits_.stop && limits_.stop->isRaised(); }

    bool isBusy(const QByteArray &host) const {
        return std::any_of(running_.begin(), running_.end(),
                           [&](const Running &running) { return running.waiting.host == host; });
    }

    void startAsMany(std::size_t parallel) {
        while (running_.size() < parallel && !isStopped()) {
            const auto next =
                std::find_if(waiting_.begin(), waiting_.end(),
                             [this](const Waiting &waiting) { return !isBusy(waiting.host); });
            if (next == waiting_.end())
                return;
            Waiting waiting = std::move(*next);
            waiting_.erase(next);
            if (observer_.isWanted(waiting.index))
                start(std::move(waiting));
        }
    }

    void start(Waiting &&waiting) {
        const HttpRequest &request = requests_[waiting.index];
        running_.emplace_back(std::move(waiting), request, limits_);
        HttpGet &get = running_.back().get;
        if (!get.isOpened() ||
            curl_multi_add_handle(multi_.get(), get.transfer().handle()) != CURLM_OK)
            end(std::prev(running_.end()), CURLE_URL_MALFORMAT);
    }

    bool takeEnded() {
        bool hasEnded = false;
        int left = 0;
        while (const CURLMsg *message = curl_multi_info_read(multi_.get(), &left)) {
            CURL *const handle = message->easy_handle;
            const CURLcode result = message->data.result;
            const auto ended =
                std::find_if(running_.begin(), running_.end(), [&](Running &running) {
                    return running.get.transfer().handle() == handle;
                });
            end(ended, result);
            hasEnded = true;
        }
        return hasEnded;
    }

    void end(std::list<Running>::iterator running, CURLcode result) {
        const HttpAnswer answer = running->get.takeAnswer(result);
        const std::size_t index = running->waiting.index;
        curl_multi_remove_handle(multi_.get(), running->get.transfer().handle());
        running_.erase(running);
        observer_.takeAnswer(index, answer);
    }

    void wait() {
        curl_waitfd stopped{limits_.stop ? limits_.stop->descriptor() : -1, CURL_WAIT_POLLIN, 0};
        curl_multi_poll(multi_.get(), &stopped, limits_.stop ? 1 : 0, longestPoll, nullptr);
    }

    const std::vector<HttpRequest> &requests_;
    const HttpLimits limits_;
    const HttpQueueObserver &observer_;
    const CurlMulti multi_; // outlives the transfers
    std::list<Waiting> waiting_;
    std::list<Running> running_; // at fixed addresses, which their transfers know
};

} // namespace

void httpGetAll(const std::vector<HttpRequest> &requests, int parallel, const HttpLimits &limits,
                const HttpQueueObserver &observer) {
    Queue(requests, limits, observer).run(parallel);
}

} // namespace tidebrook
