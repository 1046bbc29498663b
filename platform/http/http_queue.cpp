#include "platform/http/http_queue.h"

#include "platform/http/http_transfer.h"
#include "platform/sync/stop_signal.h"

#include <algorithm>
#include <list>

namespace tidebrook {

namespace {

QByteArray hostOf(const QString &address) {
    const CurlUrl url = parseUrl(address);
    return url ? partOf(url, CURLUPART_HOST).toLower() : QByteArray();
}

class Queue {
public:
    Queue(const std::vector<QString> &addresses, const HttpLimits &limits,
          const HttpQueueObserver &observer)
        : limits_(limits), observer_(observer), multi_(newMulti()) {
        for (std::size_t i = 0; i < addresses.size(); ++i)
            waiting_.push_back({i, {addresses[i]}, hostOf(addresses[i]), 0});
    }

    ~Queue() {
        for (Running &running : running_)
            curl().curl_multi_remove_handle(multi_.get(), running.get.transfer().handle());
    }

    Queue(const Queue &) = delete;
    Queue &operator=(const Queue &) = delete;

    bool run(int parallel) {
        if (!multi_)
            return false;
        curl().curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, static_cast<long>(parallel));
        while (!isStopped()) {
            startAsMany(static_cast<std::size_t>(parallel));
            if (running_.empty())
                return true;
            int count = 0;
            if (curl().curl_multi_perform(multi_.get(), &count) != CURLM_OK)
                return false;
            if (!takeEnded())
                wait();
        }
        return false;
    }

private:
    struct Waiting {
        std::size_t index;
        HttpRequest request;
        QByteArray host;
        int redirects;
    };
    struct Running {
        Running(Waiting &&what, const HttpLimits &limits)
            : waiting(std::move(what)), get(waiting.request, limits) {
            // Other hosts are gone on to when they are free.
            get.transfer().set(CURLOPT_FOLLOWLOCATION, 0L);
        }
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
            if (isWanted(waiting))
                start(std::move(waiting));
        }
    }

    bool isWanted(Waiting &waiting) const {
        if (waiting.redirects > 0)
            return true;
        const std::optional<HttpValidators> validators = observer_.begin(waiting.index);
        waiting.request.validators = validators.value_or(HttpValidators());
        return validators.has_value();
    }

    void start(Waiting &&waiting) {
        running_.emplace_back(std::move(waiting), limits_);
        HttpGet &get = running_.back().get;
        if (!get.isOpened() ||
            curl().curl_multi_add_handle(multi_.get(), get.transfer().handle()) != CURLM_OK)
            end(std::prev(running_.end()), CURLE_URL_MALFORMAT);
    }

    bool takeEnded() {
        bool hasEnded = false;
        int left = 0;
        while (const CURLMsg *message = curl().curl_multi_info_read(multi_.get(), &left)) {
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
        const Waiting waiting = running->waiting;
        const QString next = result == CURLE_OK ? running->get.transfer().redirect() : QString();
        if (!next.isEmpty() && waiting.redirects < redirectLimit && hasWebScheme(parseUrl(next))) {
            remove(running);
            waiting_.push_front({waiting.index,
                                 {next, waiting.request.validators},
                                 hostOf(next),
                                 waiting.redirects + 1});
            return;
        }
        const HttpAnswer answer =
            running->get.takeAnswer(next.isEmpty() ? result : CURLE_TOO_MANY_REDIRECTS);
        remove(running);
        observer_.takeAnswer(waiting.index, answer);
    }

    void remove(std::list<Running>::iterator running) {
        curl().curl_multi_remove_handle(multi_.get(), running->get.transfer().handle());
        running_.erase(running);
    }

    void wait() {
        curl_waitfd stopped{limits_.stop ? limits_.stop->descriptor() : -1, CURL_WAIT_POLLIN, 0};
        curl().curl_multi_poll(multi_.get(), &stopped, limits_.stop ? 1 : 0, longestPoll, nullptr);
    }

    const HttpLimits limits_;
    const HttpQueueObserver &observer_;
    const CurlMulti multi_; // outlives the transfers
    std::list<Waiting> waiting_;
    std::list<Running> running_; // at fixed addresses, which their transfers know
};

} // namespace

bool httpGetAll(const std::vector<QString> &addresses, int parallel, const HttpLimits &limits,
                const HttpQueueObserver &observer) {
    return Queue(addresses, limits, observer).run(parallel);
}

} // namespace tidebrook
