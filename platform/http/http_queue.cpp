#include "platform/http/http_queue.h"

#include "platform/http/http_transfer.h"
#include "platform/sync/stop_signal.h"

#include <QScopeGuard>

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
    Queue(const std::vector<QString> &addresses, int parallel, const HttpLimits &limits,
          const HttpQueueObserver &observer)
        : limits_(limits), observer_(observer), loop_(limits.stop, parallel), parallel_(parallel) {
        for (std::size_t i = 0; i < addresses.size(); ++i)
            waiting_.push_back(
                {i, {addresses[i]}, hostOf(addresses[i]), 0, limits.requestObject, false});
    }

    bool run() {
        while (loop_.isOpen() && !isStopped()) {
            startAsMany();
            if (running_.empty())
                return waiting_.empty();
            const auto ended = loop_.takeEnded();
            if (!ended)
                return false;
            end(*ended);
        }
        return false;
    }

private:
    using Clock = std::chrono::steady_clock;

    struct Waiting {
        std::size_t index;
        HttpRequest request;
        QByteArray host;
        int redirects;
        std::chrono::microseconds timeLeft; // for it and the redirects behind it
        bool isRepeated;
    };
    struct Running {
        Running(Waiting &&what, const HttpLimits &limits, CurlLoop &of, Clock::duration timeAway)
            : waiting(std::move(what)), get(waiting.request, limits), loop(of),
              awayBefore(timeAway) {
            get.transfer().setTimeLimits(
                limits, std::chrono::ceil<std::chrono::milliseconds>(waiting.timeLeft));
            // A redirect waits until its host is free.
            get.transfer().set(CURLOPT_FOLLOWLOCATION, 0L);
        }
        ~Running() { loop.remove(get.transfer()); }
        Running(const Running &) = delete;
        Running &operator=(const Running &) = delete;

        const Waiting waiting;
        HttpGet get;
        CurlLoop &loop;
        const Clock::duration awayBefore;
    };

    // What the observer does, as storing an answer on a slow disk, takes time of the transfers that
    // are under way: libcurl ends them for it before it looks for what has arrived.
    [[nodiscard]] auto countTimeAway() {
        return qScopeGuard([this, begin = Clock::now()] { timeAway_ += Clock::now() - begin; });
    }

    bool isStopped() const { return limits_.stop && limits_.stop->isRaised(); }

    bool isBusy(const QByteArray &host) const {
        return std::ranges::any_of(
            running_, [&](const Running &running) { return running.waiting.host == host; });
    }

    void startAsMany() {
        while (std::ssize(running_) < parallel_ && !isStopped()) {
            const auto next = std::ranges::find_if(
                waiting_, [this](const Waiting &waiting) { return !isBusy(waiting.host); });
            if (next == waiting_.end())
                return;
            Waiting waiting = std::move(*next);
            waiting_.erase(next);
            if (isWanted(waiting))
                start(std::move(waiting));
        }
    }

    bool isWanted(Waiting &waiting) {
        if (waiting.redirects > 0 || waiting.isRepeated)
            return true;
        const auto counted = countTimeAway();
        const std::optional<HttpValidators> validators = observer_.begin(waiting.index);
        waiting.request.validators = validators.value_or(HttpValidators());
        return validators.has_value();
    }

    void start(Waiting &&waiting) {
        running_.emplace_back(std::move(waiting), limits_, loop_, timeAway_);
        HttpGet &get = running_.back().get;
        if (!get.isOpened() || !loop_.add(get.transfer()))
            end(std::prev(running_.end()), CURLE_URL_MALFORMAT);
    }

    void end(const CurlLoop::Ended &ended) {
        end(std::ranges::find_if(
                running_,
                [&](Running &running) { return running.get.transfer().handle() == ended.handle; }),
            ended.code);
    }

    void end(std::list<Running>::iterator running, CURLcode result) {
        if (isTimedOutMeanwhile(*running, result)) {
            waiting_.push_front(running->waiting);
            waiting_.front().isRepeated = true;
            running_.erase(running);
            return;
        }
        const Waiting waiting = running->waiting;
        // The body of a redirect need not come whole: it is of no use.
        const bool isAnswered = result == CURLE_OK || result == CURLE_PARTIAL_FILE;
        HttpTransfer &transfer = running->get.transfer();
        const QString next = isAnswered ? transfer.redirect() : QString();
        const auto timeLeft = waiting.timeLeft - transfer.duration();
        if (!next.isEmpty())
            result = redirectFault(waiting, next, timeLeft);
        HttpAnswer answer = running->get.takeAnswer(result);
        running_.erase(running);
        if (next.isEmpty() || result != CURLE_OK) {
            const auto counted = countTimeAway();
            return observer_.takeAnswer(waiting.index, answer);
        }
        waiting_.push_front({waiting.index,
                             {next, waiting.request.validators},
                             hostOf(next),
                             waiting.redirects + 1,
                             timeLeft,
                             waiting.isRepeated});
    }

    bool isTimedOutMeanwhile(const Running &running, CURLcode result) const {
        return result == CURLE_OPERATION_TIMEDOUT && !running.waiting.isRepeated &&
               timeAway_ - running.awayBefore >= limits_.connect / 2;
    }

    // Why a redirect is not followed; CURLE_OK where it is.
    static CURLcode redirectFault(const Waiting &waiting, const QString &next,
                                  std::chrono::microseconds timeLeft) {
        if (waiting.redirects >= redirectLimit)
            return CURLE_TOO_MANY_REDIRECTS;
        if (timeLeft <= std::chrono::microseconds(0))
            return CURLE_OPERATION_TIMEDOUT;
        return hasWebScheme(parseUrl(next)) ? CURLE_OK : CURLE_UNSUPPORTED_PROTOCOL;
    }

    const HttpLimits limits_;
    const HttpQueueObserver &observer_;
    CurlLoop loop_; // outlives the transfers
    const int parallel_;
    std::list<Waiting> waiting_;
    Clock::duration timeAway_{0};
    std::list<Running> running_; // at fixed addresses, which their transfers know
};

} // namespace

bool httpGetAll(const std::vector<QString> &addresses, int parallel, const HttpLimits &limits,
                const HttpQueueObserver &observer) {
    return Queue(addresses, parallel, limits, observer).run();
}

} // namespace tidebrook
