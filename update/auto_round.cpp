#include "update/auto_round.h"

#include "feed/article_ingestion.h"
#include "platform/http/http_queue.h"
#include "platform/sync/stop_signal.h"
#include "update/auto_list.h"
#include "update/update_history.h"

#include <QUrl>

#include <algorithm>
#include <optional>
#include <vector>

namespace tidebrook {

namespace {

using namespace std::chrono_literals;

constexpr int channelsAtOnce = 4;
constexpr int silenceLimit = 3; // times in a row that a host may keep a round waiting for nothing

// A failure in a round must not be shown to a user who waits for something else.
constexpr FetchOptions unattended{.keepsPauses = false, .recordsErrors = false};

// Rounds begin some seconds early or late.
constexpr std::chrono::seconds tolerance = 1min;

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
        ReadFlagCounts counts;              // as it was when it was asked for
        bool isSettled = false;             // there was nothing to prune, and the counts were right
        std::optional<FeedFetcher> fetcher; // of one whose document is still to be downloaded
    };
    // A turn that reached no server, which counts as a failure only if others were reached.
    struct Unreached {
        RefreshJob job;
        RefreshResult result;
    };

    bool collect();
    bool isTurnOf(const UpdateState &state);
    std::optional<HttpValidators> begin(Channel &channel);
    HttpValidators validatorsOf(Channel &channel) const;
    void takeAnswer(Channel &channel, const HttpAnswer &answer);
    void download(Channel &channel);
    void finish(Channel &channel, bool isFetched, const HttpAnswer &answer);
    bool isStopped() const { return target_.limits.stop && target_.limits.stop->isRaised(); }

    const RefreshTarget &target_;
    const AutoRound &round_;
    const Observer &observer_;
    UpdateStateStore states_;
    std::vector<Channel> channels_;
    std::vector<Unreached> unreached_;
    QHash<QString, QDateTime> tiredHosts_; // and until when they are to be left alone
    QHash<QString, int> silences_;         // of hosts, in a row
    AutoRoundResult result_;
};

AutoRoundResult Run::run() {
    if (!collect())
        return result_;
    std::vector<QString> addresses;
    for (const Channel &channel : channels_)
        addresses.push_back(channel.job.url);
    const bool isAsked = httpGetAll(addresses, channelsAtOnce, target_.limits,
                                    {[this](std::size_t index) { return begin(channels_[index]); },
                                     [this](std::size_t index, const HttpAnswer &answer) {
                                         takeAnswer(channels_[index], answer);
                                     }});
    // Only now: the direct download makes connections of its own.
    for (Channel &channel : channels_) {
        if (channel.fetcher && !isStopped())
            download(channel);
    }
    const bool isReached =
        unreached_.empty() || static_cast<std::size_t>(result_.tried) > unreached_.size();
    for (const Unreached &turn : unreached_) {
        if (isReached)
            noteTurn(states_, turn.job, round_.start, turn.result, {});
        else
            noteUnreached(states_, turn.job, turn.result);
    }
    target_.store.PublishTotalUnread();
    result_.isOver = isAsked && isReached && !isStopped();
    return result_;
}

// The list may be older than the store, whose address and category are used.
bool Run::collect() {
    std::optional<QList<RefreshJob>> listed = autoUpdatedChannels(target_.device);
    if (!listed)
        return false;
    const QHash<QString, UpdateState> states = states_.readAll();
    for (RefreshJob &job : *listed) {
        if (!target_.store.FindCategory(job.channelName, job.category))
            return false;
        if (job.category.isNull()) {
            ++result_.unknown;
            continue;
        }
        if (!target_.store.GetChannelLink(job.category, job.channelName, job.url))
            return false;
        const UpdateState state = stateAt(states.value(job.channelName), job.url);
        if (isTurnOf(state))
            channels_.push_back({std::move(job), state, {}, false, std::nullopt});
    }
    return true;
}

bool Run::isTurnOf(const UpdateState &state) {
    const bool hadTurn = state.lastTurn.isValid() && state.lastTurn >= round_.since &&
                         state.lastTurn <= round_.start.addSecs(tolerance.count());
    if (hadTurn)
        return false;
    const QDateTime next = nextTry(state, round_.isDaily, round_.start);
    const bool isLeftAlone = next.isValid() && next > round_.start.addSecs(tolerance.count());
    result_.leftAlone += isLeftAlone ? 1 : 0;
    return !isLeftAlone;
}

// A host that has had too many requests means those for its other feeds as well.
std::optional<HttpValidators> Run::begin(Channel &channel) {
    const QString host = QUrl(channel.job.url).host();
    const QDateTime until = tiredHosts_.value(host);
    if (!until.isValid() && silences_.value(host) < silenceLimit)
        return validatorsOf(channel);
    ++result_.leftAlone;
    if (!until.isValid()) // the next round tries it again
        return std::nullopt;
    noteRetryAfter(states_, channel.job, until);
    return std::nullopt;
}

// An unchanged document may be skipped only while the store holds its articles: none has been
// pruned, and the database and the channel are those that it was stored in.
HttpValidators Run::validatorsOf(Channel &channel) const {
    const UpdateState &state = channel.state;
    if (state.validators.isEmpty())
        return {};
    channel.isSettled = target_.store.IsSettled(channel.job.channelName,
                                                ArticleIngestion::oldestKept(), channel.counts);
    return channel.counts.total == state.total ? state.validators : HttpValidators();
}

void Run::takeAnswer(Channel &channel, const HttpAnswer &answer) {
    FeedFetcher &fetcher =
        channel.fetcher.emplace(target_.device, target_.registry, target_.limits, unattended);
    int &silences = silences_[QUrl(channel.job.url).host()];
    silences = answer.progress == HttpProgress::Complete ? 0 : silences + 1;
    if (channel.job.url.isEmpty())
        return finish(channel, fetcher.fail(NothingKnown), answer);
    if (isOverloaded(answer))
        tiredHosts_.insert(QUrl(channel.job.url).host(), retryAfter(answer, round_.start));
    if (asksToBeLeftAlone(answer))
        return finish(channel, fetcher.fail(FeedNotDownloaded), answer);
    const FeedFetcher::Taken taken = fetcher.takeAnswer(answer);
    if (taken != FeedFetcher::Taken::Unclear)
        finish(channel, taken != FeedFetcher::Taken::Failed, answer);
}

void Run::download(Channel &channel) {
    const bool isFetched = channel.fetcher->download(channel.job.url);
    if (isFetched || !isStopped())
        finish(channel, isFetched, {});
}

void Run::finish(Channel &channel, bool isFetched, const HttpAnswer &answer) {
    // Most feeds have nothing new most of the time, and then there is nothing to write.
    const bool isSame = answer.isUnchanged && channel.isSettled;
    const RefreshResult result =
        isSame ? RefreshResult{0, 0, channel.counts, true}
               : storeFetched(target_, channel.job, *channel.fetcher, isFetched);
    channel.fetcher.reset();
    if (result.error == FeedNotSent)
        unreached_.push_back({channel.job, result});
    else
        noteTurn(states_, channel.job, round_.start, result, answer);
    ++result_.tried;
    result_.unchanged += answer.isUnchanged ? 1 : 0;
    result_.failed += result.error != 0 ? 1 : 0;
    result_.storedCount += result.storedCount;
    result_.newChannels += result.storedCount > 0 ? 1 : 0;
    observer_(channel.job, result);
}

} // namespace

AutoRoundResult
runAutoRound(const RefreshTarget &target, const AutoRound &round,
             const std::function<void(const RefreshJob &, const RefreshResult &)> &observer) {
    return Run(target, round, observer).run();
}

} // namespace tidebrook
