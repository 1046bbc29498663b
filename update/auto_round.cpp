#include "update/auto_round.h"

#include "update/auto_list.h"
#include "update/polite_refresh.h"
#include "update/update_history.h"

#include <optional>
#include <vector>

namespace tidebrook {

namespace {

using namespace std::chrono_literals;

constexpr int channelsAtOnce = 4;

// A failure in a round must not be shown to a user who waits for something else.
constexpr FetchOptions unattended{.keepsPauses = false, .recordsErrors = false};

// Rounds begin some seconds early or late.
constexpr std::chrono::seconds tolerance = 1min;

bool isTurnOf(const UpdateState &state, const AutoRound &round, AutoRoundResult &result) {
    const QDateTime latest = round.start.addSecs(tolerance.count());
    const bool hadTurn =
        state.lastTurn.isValid() && state.lastTurn >= round.since && state.lastTurn <= latest;
    if (hadTurn)
        return false;
    const QDateTime next = nextTry(state, round.isDaily, round.start);
    const bool isLeftAlone = next.isValid() && next > latest;
    result.leftAlone += isLeftAlone ? 1 : 0;
    return !isLeftAlone;
}

// The list may be older than the store, whose address and category are used.
std::optional<std::vector<FeedTurn>> collectTurns(const RefreshTarget &target,
                                                  const QHash<QString, UpdateState> &states,
                                                  const AutoRound &round, AutoRoundResult &result) {
    std::optional<QList<RefreshJob>> listed = autoUpdatedChannels(target.device);
    if (!listed)
        return std::nullopt;
    std::vector<FeedTurn> turns;
    for (RefreshJob &job : *listed) {
        if (!target.store.FindCategory(job.channelName, job.category))
            return std::nullopt;
        if (job.category.isNull()) {
            ++result.unknown;
            continue;
        }
        if (!target.store.GetChannelLink(job.category, job.channelName, job.url))
            return std::nullopt;
        const UpdateState state = stateAt(states.value(job.channelName), job.url);
        if (isTurnOf(state, round, result))
            turns.push_back({std::move(job), state});
    }
    return turns;
}

void count(AutoRoundResult &round, const RefreshResult &turn, bool isUnchanged) {
    ++round.tried;
    round.unchanged += isUnchanged ? 1 : 0;
    round.failed += turn.error != 0 ? 1 : 0;
    round.storedCount += turn.storedCount;
    round.newChannels += turn.storedCount > 0 ? 1 : 0;
}

} // namespace

AutoRoundResult
runAutoRound(const RefreshTarget &target, const AutoRound &round,
             const std::function<void(const RefreshJob &, const RefreshResult &)> &observer) {
    AutoRoundResult result;
    UpdateStateStore states(target.device);
    const auto turns = collectTurns(target, states.readAll(), round, result);
    if (!turns)
        return result;
    const TurnObserver turnObserver{
        [&](std::size_t index, const RefreshResult &ended, bool isUnchanged) {
            count(result, ended, isUnchanged);
            observer((*turns)[index].job, ended);
        },
        [&](std::size_t, const QDateTime &) { ++result.leftAlone; }};
    result.isOver =
        refreshPolitely({target.device, target.registry, target.store, target.limits, unattended},
                        states, *turns, channelsAtOnce, round.start, turnObserver);
    target.store.PublishTotalUnread();
    return result;
}

} // namespace tidebrook
