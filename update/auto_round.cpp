#include "update/auto_round.h"

#include "platform/clock.h"
#include "platform/http_queue.h"
#include "platform/stop_signal.h"
#include "update/auto_list.h"

#include <QUrl>

#include <algorithm>
#include <optional>
#include <vector>

namespace tidebrook {

namespace {

using namespace std::chrono_literals;

constexpr int channelsAtOnce = 4;
constexpr std::chrono::seconds firstBackOff = 1h;
constexpr std::chrono::seconds longestBackOff = 24h;
constexpr std::chrono::seconds longestWish = 7 * 24h; // of a server, to be left alone
constexpr int tooManyRequests = 429;
constexpr int unavailable = 503;

// Rounds are not to the second as far apart as they are meant to be.
constexpr std::chrono::seconds tolerance = 1min;

QDateTime after(const QDateTime &moment, std::chrono::seconds time) {
    return moment.addSecs(time.count());
}

bool asksToBeLeftAlone(const HttpAnswer &answer) {
    return answer.progress == HttpProgress::Complete &&
           (answer.status == tooManyRequests || answer.status == unavailable);
}

/// One run of a round.
class Run {
public:
    using Observer = std::function<void(const RefreshJob &, const RefreshResult &)>;

    Run(const RefreshTarget &target, const AutoRound &round, const Observer &observer)
        : target_(target), round_(round), observer_(observer), states_(target.device) {}

    AutoRoundResult run();

private:
    struct Channel {
        RefreshJob job;
        UpdateState state;
        std::optional<FeedFetcher> fetcher; // of one whose document is still to be downloaded
    };

    void collect();
    bool isTurnOf(const UpdateState &state);
    HttpRequest requestFor(const Channel &channel) const;
    bool isWelcome(Channel &channel);
    void takeAnswer(Channel &channel, const HttpAnswer &answer);
    void download(Channel &channel);
    void finish(Channel &channel, FeedFetcher &fetcher, bool isFetched, const HttpAnswer &answer);
    bool isStopped() const { return target_.limits.stop && target_.limits.stop->isRaised(); }

    const RefreshTarget &target_;
    const AutoRound &round_;
    const Observer &observer_;
    UpdateStateStore states_;
    std::vector<Channel> channels_;
    QHash<QString, QDateTime> tiredHosts_; // and until when they are to be left alone
    AutoRoundResult result_;
};

AutoRoundResult Run::run() {
    collect();
    std::vector<HttpRequest> requests;
    for (const Channel &channel : channels_)
        requests.push_back(requestFor(channel));
    httpGetAll(requests, channelsAtOnce, target_.limits,
               {[this](std::size_t index) { return isWelcome(channels_[index]); },
                [this](std::size_t index, const HttpAnswer &answer) {
                    takeAnswer(channels_[index], answer);
                }});
    // Only now: the direct download makes connections of its own.
    for (Channel &channel : channels_) {
        if (channel.fetcher && !isStopped())
            download(channel);
    }
    target_.store.PublishTotalUnread();
    return result_;
}

// What the list says of a channel may be older than what the store says; the store's holds.
void Run::collect() {
    const QHash<QString, UpdateState> states = states_.readAll();
    for (RefreshJob &job : autoUpdatedChannels(target_.device)) {
        QString category;
        if (!target_.store.FindCategory(job.channelName, category) || category.isNull() ||
            !target_.store.GetChannelLink(category, job.channelName, job.url)) {
            ++result_.unknown;
            continue;
        }
        job.category = category;
        const UpdateState state = states.value(job.channelName);
        if (isTurnOf(state))
            channels_.push_back({std::move(job), state, std::nullopt});
    }
}

bool Run::isTurnOf(const UpdateState &state) {
    const bool isTried = state.lastAttempt.isValid() && state.lastAttempt >= round_.since &&
                         state.lastAttempt <= after(round_.start, tolerance);
    if (isTried)
        return false;
    const QDateTime next = nextTry(state, round_.isDaily, round_.start);
    const bool isLeftAlone = next.isValid() && next > after(round_.start, tolerance);
    result_.leftAlone += isLeftAlone ? 1 : 0;
    return !isLeftAlone;
}

// A document is only as good as unchanged while the store holds what came of it: no article has
// been pruned, and no other database or channel has taken the place of the one that it went into.
HttpRequest Run::requestFor(const Channel &channel) const {
    const UpdateState &state = channel.state;
    ReadFlagCounts counts;
    const bool isStored =
        state.url == channel.job.url && !state.validators.isEmpty() &&
        target_.store.CountReadFlags(channel.job.category, channel.job.channelName, counts) &&
        counts.total == state.total;
    return {channel.job.url, isStored ? state.validators : HttpValidators()};
}

// A host that has had too many requests means those for its other feeds as well.
bool Run::isWelcome(Channel &channel) {
    const QDateTime until = tiredHosts_.value(QUrl(channel.job.url).host());
    if (!until.isValid())
        return true;
    channel.state.leftAloneUntil = until;
    states_.write(channel.job.channelName, channel.state);
    ++result_.leftAlone;
    return false;
}

void Run::takeAnswer(Channel &channel, const HttpAnswer &answer) {
    FeedFetcher &fetcher =
        channel.fetcher.emplace(target_.device, target_.registry, target_.limits);
    if (channel.job.url.isEmpty() || asksToBeLeftAlone(answer))
        return finish(channel, fetcher, fetcher.fail(FeedNotDownloaded), answer);
    const FeedFetcher::Taken taken = fetcher.takeAnswer(answer);
    if (taken != FeedFetcher::Taken::Unclear)
        finish(channel, fetcher, taken != FeedFetcher::Taken::Failed, answer);
}

void Run::download(Channel &channel) {
    const bool isFetched = channel.fetcher->download(channel.job.url);
    if (isFetched || !isStopped())
        finish(channel, *channel.fetcher, isFetched, {});
}

void Run::finish(Channel &channel, FeedFetcher &fetcher, bool isFetched, const HttpAnswer &answer) {
    const RefreshResult result = storeFetched(target_, channel.job, fetcher, isFetched);
    UpdateState &state = channel.state;
    state.lastAttempt = round_.start;
    state.lastError = result.error;
    state.wasUnchanged = answer.isUnchanged;
    state.storedCount = result.storedCount;
    state.leftAloneUntil = {};
    if (asksToBeLeftAlone(answer) && answer.retryAfter > 0s) {
        state.leftAloneUntil = after(utcNow(), std::min(answer.retryAfter, longestWish));
        if (answer.status == tooManyRequests)
            tiredHosts_.insert(QUrl(channel.job.url).host(), state.leftAloneUntil);
    }
    if (result.error == 0) {
        state.lastSuccess = utcNow();
        state.failures = 0;
        // A channel that was unchanged but has lost articles to their age is to be sent anew.
        if (!answer.isUnchanged) {
            state.validators = answer.validators;
            state.url = channel.job.url;
            state.total = result.counts.total;
        }
    } else if (result.isCounted) { // else it is our database that failed, and not the feed
        ++state.failures;
    }
    states_.write(channel.job.channelName, state);
    channel.fetcher.reset();
    ++result_.tried;
    result_.unchanged += answer.isUnchanged ? 1 : 0;
    result_.failed += result.error != 0 ? 1 : 0;
    result_.storedCount += result.storedCount;
    observer_(channel.job, result);
}

} // namespace

std::chrono::seconds backOff(int failures) {
    std::chrono::seconds time = firstBackOff;
    for (int i = 1; i < failures && time < longestBackOff; ++i)
        time *= 2;
    return std::min(time, longestBackOff);
}

QDateTime nextTry(const UpdateState &state, bool isDaily, const QDateTime &now) {
    QDateTime next;
    // What lies further ahead than it can was written by a clock that was set back since.
    if (state.leftAloneUntil.isValid() && state.leftAloneUntil <= after(now, longestWish))
        next = state.leftAloneUntil;
    if (state.failures == 0 || isDaily || state.lastAttempt > after(now, tolerance))
        return next;
    const QDateTime again = after(state.lastAttempt, backOff(state.failures));
    return next.isValid() ? qMax(next, again) : again;
}

void noteRequested(UpdateStateStore &states, const RefreshJob &job, const RefreshResult &result) {
    UpdateState state = states.read(job.channelName);
    state.lastAttempt = utcNow();
    state.lastError = result.error;
    state.wasUnchanged = false;
    state.storedCount = result.storedCount;
    state.failures = 0;
    state.leftAloneUntil = {};
    if (result.error == 0)
        state.lastSuccess = state.lastAttempt;
    states.write(job.channelName, state);
}

AutoRoundResult
runAutoRound(const RefreshTarget &target, const AutoRound &round,
             const std::function<void(const RefreshJob &, const RefreshResult &)> &observer) {
    return Run(target, round, observer).run();
}

} // namespace tidebrook
