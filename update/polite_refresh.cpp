#include "update/polite_refresh.h"

#include "feed/article_ingestion.h"
#include "platform/http/http_queue.h"
#include "platform/sync/stop_signal.h"
#include "update/update_history.h"

#include <QUrl>

#include <optional>

namespace tidebrook {

namespace {

constexpr int silenceLimit = 3; // times in a row that a host may keep a run waiting for nothing

class Run {
public:
    Run(const RefreshTarget &target, UpdateStateStore &states, const std::vector<FeedTurn> &turns,
        const QDateTime &start, const TurnObserver &observer)
        : target_(target), states_(states), turns_(turns), start_(start), observer_(observer),
          channels_(turns.size()) {}

    bool run(int parallel);

private:
    struct Channel {
        ReadFlagCounts counts;              // as it was when it was asked for
        bool isSettled = false;             // there was nothing to prune, and the counts were right
        std::optional<FeedFetcher> fetcher; // of one whose document is still to be downloaded
    };
    // A turn that reached no server, which counts as a failure only if others were reached.
    struct Unreached {
        std::size_t index;
        RefreshResult result;
    };

    std::optional<HttpValidators> begin(std::size_t index);
    HttpValidators validatorsOf(std::size_t index);
    void takeAnswer(std::size_t index, HttpAnswer &answer);
    void download(std::size_t index);
    void finish(std::size_t index, bool isFetched, const HttpAnswer &answer);
    bool noteUnreachedTurns();
    const RefreshJob &jobOf(std::size_t index) const { return turns_[index].job; }
    bool isStopped() const { return target_.limits.stop && target_.limits.stop->isRaised(); }

    const RefreshTarget &target_;
    UpdateStateStore &states_;
    const std::vector<FeedTurn> &turns_;
    const QDateTime start_;
    const TurnObserver &observer_;
    std::vector<Channel> channels_; // of the turns
    std::vector<Unreached> unreached_;
    std::size_t tried_ = 0;
    QHash<QString, QDateTime> tiredHosts_; // and until when they are to be left alone
    QHash<QString, int> silences_;         // of hosts, in a row
};

bool Run::run(int parallel) {
    std::vector<QString> addresses;
    for (const FeedTurn &turn : turns_)
        addresses.push_back(turn.job.url);
    const bool isAsked =
        httpGetAll(addresses, parallel, target_.limits,
                   {[this](std::size_t index) { return begin(index); },
                    [this](std::size_t index, HttpAnswer &answer) { takeAnswer(index, answer); }});
    // Only now: the direct download makes connections of its own.
    for (std::size_t i = 0; i < channels_.size(); ++i) {
        if (channels_[i].fetcher && !isStopped())
            download(i);
    }
    const bool isReached = noteUnreachedTurns();
    if (!isStopped())
        target_.store.ReturnUnusedSpace();
    return isAsked && isReached && !isStopped();
}

bool Run::noteUnreachedTurns() {
    const bool isReached = unreached_.empty() || tried_ > unreached_.size();
    for (const Unreached &turn : unreached_) {
        if (isReached)
            noteTurn(states_, jobOf(turn.index), start_, turn.result, {});
        else
            noteUnreached(states_, jobOf(turn.index), turn.result);
    }
    return isReached;
}

// A host that has had too many requests means those for its other feeds as well.
std::optional<HttpValidators> Run::begin(std::size_t index) {
    const QString host = QUrl(jobOf(index).url).host();
    const QDateTime until = tiredHosts_.value(host);
    if (!until.isValid() && silences_.value(host) < silenceLimit)
        return validatorsOf(index);
    if (until.isValid()) // else the next run tries it again
        noteRetryAfter(states_, jobOf(index), until);
    observer_.leftAlone(index, until);
    return std::nullopt;
}

// An unchanged document may be skipped only while the store holds its articles: none has been
// pruned, and the database and the channel are those that it was stored in. Articles that another
// channel has are gone with that one.
HttpValidators Run::validatorsOf(std::size_t index) {
    const UpdateState &state = turns_[index].state;
    Channel &channel = channels_[index];
    if (state.validators.isEmpty())
        return {};
    QString category;
    const bool isKept =
        state.shared.count == 0 ||
        (target_.store.FindCategory(state.shared.owner, category) && !category.isNull());
    if (!isKept)
        return {};
    channel.isSettled = target_.store.IsSettled(jobOf(index).channelName,
                                                ArticleIngestion::oldestKept(), channel.counts);
    return channel.counts.total == state.total ? state.validators : HttpValidators();
}

void Run::takeAnswer(std::size_t index, HttpAnswer &answer) {
    FeedFetcher &fetcher = channels_[index].fetcher.emplace(target_.device, target_.registry,
                                                            target_.limits, target_.options);
    const QString host = QUrl(jobOf(index).url).host();
    int &silences = silences_[host];
    silences = answer.isTimedOut ? silences + 1 : 0;
    if (jobOf(index).url.isEmpty())
        return finish(index, fetcher.fail(NothingKnown), answer);
    if (isOverloaded(answer))
        tiredHosts_.insert(host, retryAfter(answer, start_));
    if (asksToBeLeftAlone(answer))
        return finish(index, fetcher.fail(FeedNotDownloaded), answer);
    const FeedFetcher::Taken taken = fetcher.takeAnswer(answer);
    if (taken != FeedFetcher::Taken::Unclear)
        finish(index, taken != FeedFetcher::Taken::Failed, answer);
}

void Run::download(std::size_t index) {
    const bool isFetched = channels_[index].fetcher->download(jobOf(index).url);
    if (isFetched || !isStopped())
        finish(index, isFetched, {});
}

void Run::finish(std::size_t index, bool isFetched, const HttpAnswer &answer) {
    Channel &channel = channels_[index];
    // Most feeds have nothing new most of the time, and then there is nothing to write.
    const bool isSame = answer.isUnchanged && channel.isSettled;
    const RefreshResult result =
        isSame ? RefreshResult{0, 0, channel.counts, true}
               : storeFetched(target_, jobOf(index), *channel.fetcher, isFetched);
    channel.fetcher.reset();
    if (result.error == FeedNotSent)
        unreached_.push_back({index, result});
    else
        noteTurn(states_, jobOf(index), start_, result, answer);
    ++tried_;
    observer_.ended(index, result, answer.isUnchanged);
}

} // namespace

bool refreshPolitely(const RefreshTarget &target, UpdateStateStore &states,
                     const std::vector<FeedTurn> &turns, int parallel, const QDateTime &start,
                     const TurnObserver &observer) {
    return Run(target, states, turns, start, observer).run(parallel);
}

} // namespace tidebrook
