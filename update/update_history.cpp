#include "update/update_history.h"

#include "platform/base/clock.h"

#include <algorithm>

namespace tidebrook {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds firstBackOff = 1h;
constexpr std::chrono::seconds longestBackOff = 24h;
constexpr std::chrono::seconds longestWish = 7 * 24h;
constexpr int tooManyRequests = 429;
constexpr int unavailable = 503;

QDateTime after(const QDateTime &moment, std::chrono::seconds time) {
    return moment.addSecs(time.count());
}

bool hasStatus(const HttpAnswer &answer, int status) {
    return answer.progress == HttpProgress::Complete && answer.status == status;
}

// How long a feed that has failed this often in a row is left alone.
std::chrono::seconds backOff(int failures) {
    std::chrono::seconds time = firstBackOff;
    for (int i = 1; i < failures && time < longestBackOff; ++i)
        time *= 2;
    return std::min(time, longestBackOff);
}

// What every attempt leaves behind.
void noteAttempt(UpdateState &state, const RefreshJob &job, const RefreshResult &result) {
    state = stateAt(state, job.url);
    state.lastAttempt = utcNow();
    state.lastError = result.error;
    state.wasUnchanged = false;
    state.storedCount = result.storedCount;
    if (result.shared)
        state.shared = *result.shared;
    if (result.error == 0) {
        state.lastSuccess = state.lastAttempt;
        state.failures = 0;
    }
}

} // namespace

UpdateState stateAt(const UpdateState &state, const QString &url) {
    if (state.url == url)
        return state;
    UpdateState fresh;
    fresh.url = url;
    return fresh;
}

QDateTime serverWish(const UpdateState &state, const QDateTime &now) {
    // What lies further ahead than it can was written by a clock that was set back since.
    const bool isPossible = state.leftAloneUntil <= after(now, longestWish);
    return isPossible ? state.leftAloneUntil : QDateTime();
}

QDateTime nextTry(const UpdateState &state, bool isDaily, const QDateTime &now) {
    QDateTime next = serverWish(state, now);
    if (state.failures == 0 || isDaily || state.lastTurn > after(now, 1min))
        return next;
    const QDateTime again = after(state.lastTurn, backOff(state.failures));
    return next.isValid() ? qMax(next, again) : again;
}

bool asksToBeLeftAlone(const HttpAnswer &answer) {
    return isOverloaded(answer) || hasStatus(answer, unavailable);
}

bool isOverloaded(const HttpAnswer &answer) { return hasStatus(answer, tooManyRequests); }

QDateTime retryAfter(const HttpAnswer &answer, const QDateTime &now) {
    if (asksToBeLeftAlone(answer) && answer.retryAfter > 0s)
        return after(now, std::min(answer.retryAfter, longestWish));
    return isOverloaded(answer) ? after(now, firstBackOff) : QDateTime();
}

void noteRequested(UpdateStateStore &states, const RefreshJob &job, const RefreshResult &result) {
    states.change(job.channelName, [&](UpdateState &state) {
        noteAttempt(state, job, result);
        state.failures = 0;
        state.leftAloneUntil = {};
    });
}

void forgetFailures(UpdateStateStore &states, const RefreshJob &job) {
    states.change(job.channelName, [&](UpdateState &state) {
        state = stateAt(state, job.url);
        state.failures = 0;
    });
}

void noteUnreached(UpdateStateStore &states, const RefreshJob &job, const RefreshResult &result) {
    states.change(job.channelName, [&](UpdateState &state) { noteAttempt(state, job, result); });
}

void noteRetryAfter(UpdateStateStore &states, const RefreshJob &job, const QDateTime &until) {
    states.change(job.channelName, [&](UpdateState &state) {
        state = stateAt(state, job.url);
        state.leftAloneUntil = until;
    });
}

void takeTurn(UpdateState &state, const RefreshJob &job, const QDateTime &start,
              const RefreshResult &result, const HttpAnswer &answer) {
    noteAttempt(state, job, result);
    state.lastTurn = start;
    state.wasUnchanged = answer.isUnchanged;
    state.leftAloneUntil = retryAfter(answer, start);
    // A failure that left the channel uncounted is our database's, and not the feed's.
    if (result.error != 0 && result.isCounted)
        ++state.failures;
    // A channel that was unchanged but has lost articles to their age is to be sent anew.
    if (result.error == 0 && !answer.isUnchanged) {
        state.validators = answer.validators;
        state.total = result.counts.total;
    }
}

void noteTurn(UpdateStateStore &states, const RefreshJob &job, const QDateTime &start,
              const RefreshResult &result, const HttpAnswer &answer) {
    states.change(job.channelName,
                  [&](UpdateState &state) { takeTurn(state, job, start, result, answer); });
}

} // namespace tidebrook
