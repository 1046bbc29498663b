#pragma once

#include "platform/http/http.h"
#include "store/update_state.h"
#include "update/refresh.h"

#include <QDateTime>
#include <QString>

namespace tidebrook {

/// What is remembered of a channel that has this address now: nothing, if it had another one.
UpdateState stateAt(const UpdateState &state, const QString &url);

/// Until when the feed's server has asked for it to be left alone; invalid when it has not.
QDateTime serverWish(const UpdateState &state, const QDateTime &now);

/// The earliest moment at which a channel may be tried automatically again, for what its feed's
/// server has asked for (`serverWish`) and (unless rounds are a day apart anyway) how often it has
/// failed. Invalid when that is at any time.
QDateTime nextTry(const UpdateState &state, bool isDaily, const QDateTime &now);

/// Until when a server that was asked at `now` wants to be left alone; invalid when it does not.
QDateTime retryAfter(const HttpAnswer &answer, const QDateTime &now);

/// Whether a server answers that it has had too much, and not with the document.
bool asksToBeLeftAlone(const HttpAnswer &answer);
/// Whether it has had too much of this program, and not only of this feed.
bool isOverloaded(const HttpAnswer &answer);

/// Remembers how a refresh that a user has asked for ended. The feed's failures are forgotten.
void noteRequested(UpdateStateStore &states, const RefreshJob &job, const RefreshResult &result);

/// Forgets how often the feed has failed, since a user asks for it.
void forgetFailures(UpdateStateStore &states, const RefreshJob &job);

/// Remembers an attempt of a round that reached no server at all: it counts as no failure, and the
/// feed has not had its turn.
void noteUnreached(UpdateStateStore &states, const RefreshJob &job, const RefreshResult &result);

/// Remembers that the feed's server has asked to be left alone, before the feed had its turn.
void noteRetryAfter(UpdateStateStore &states, const RefreshJob &job, const QDateTime &until);

/// What a channel's turn in the round that began at `start` leaves in its state.
void takeTurn(UpdateState &state, const RefreshJob &job, const QDateTime &start,
              const RefreshResult &result, const HttpAnswer &answer);

/// Remembers how a channel's turn in the round that began at `start` ended.
void noteTurn(UpdateStateStore &states, const RefreshJob &job, const QDateTime &start,
              const RefreshResult &result, const HttpAnswer &answer);

} // namespace tidebrook
