#include "service/downloader.h"

#include "platform/base/clock.h"
#include "platform/base/spare_memory.h"
#include "platform/desktop/service.h"
#include "platform/sync/wait_any.h"
#include "update/round_news.h"
#include "update/round_request.h"

#include <algorithm>
#include <utility>

namespace tidebrook {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds longestSleep = 1min;

QString summary(const AutoRoundResult &result) {
    return QStringLiteral("automatic update: %1 channels, %2 unchanged, %3 failed, %4 new articles")
               .arg(result.tried)
               .arg(result.unchanged)
               .arg(result.failed)
               .arg(result.storedCount) +
           (result.leftAlone > 0 ? QStringLiteral("; left alone: %1").arg(result.leftAlone)
                                 : QString()) +
           (result.unknown > 0 ? QStringLiteral("; no longer there: %1").arg(result.unknown)
                               : QString());
}

// How long after a round that failed, as a rule without a network, it is run again.
std::chrono::milliseconds timeToRecover(int futileRounds) {
    constexpr int mostDoublings = 5; // the network may come back without a sign
    return 1min * (1 << std::min(futileRounds - 1, mostDoublings));
}

} // namespace

Downloader::Downloader(const DeviceRoot &device, const QString &todayItemKey, ServiceLog &log,
                       Interrupt &interrupt)
    : device_(device), todayItemKey_(todayItemKey), log_(log), registry_(device),
      request_(device, requestEvent, NamedEvent::Reset::Manual),
      roundRequest_(device, roundRequestEvent, NamedEvent::Reset::Auto), interrupt_(interrupt),
      schedule_(registry_), network_(registry_),
      server_(device, registry_, todayItemKey, log, interrupt.stopSignal()) {}

Downloader::~Downloader() { interrupt_.stop(); }

// The files that this process keeps open or locked.
FileIdentities Downloader::files() const {
    const QString run = device_.path() + u"/run/";
    return identitiesOf({device_.path(), device_.registryPath(), serviceLockPath(device_),
                         run + requestEvent + u".event", run + roundRequestEvent + u".event"});
}

bool Downloader::run() {
    const FileIdentities ownFiles = files();
    giveBackMemory(); // what starting has needed
    bool isRoundWanted = false;
    while (!interrupt_.isStopped()) {
        if (network_.update()) {
            futileRounds_ = 0;
            notBefore_ = 0ms;
            hasNetworkCome_ = true;
        }
        lookAfterRound(isRoundWanted);
        const WaitResult result =
            WaitAny({&request_, &roundRequest_}, {interrupt_.descriptor(), network_.descriptor()},
                    timeToSleep());
        // Files that were put in their place, as from a backup, are another device.
        if (result.kind == WaitResult::Kind::Failed || ownFiles.isEmpty() || files() != ownFiles) {
            log_.error(
                QStringLiteral("%1: the device is not the one that it was").arg(device_.path()));
            return false;
        }
        isRoundWanted = result.kind == WaitResult::Kind::Event && result.index == 1;
        if (result.kind == WaitResult::Kind::Event && !isRoundWanted) {
            // Before the file is read, so that a request that comes meanwhile is not lost.
            request_.reset();
            server_.serveLatest();
        } else if (result.kind == WaitResult::Kind::Input) {
            interrupt_.clear();
        }
    }
    // A request that came too late to be served is answered all the same.
    if (request_.test())
        server_.serveLatest();
    return true;
}

// Settings and the clock are looked at every minute; a change of them sends no signal.
std::chrono::milliseconds Downloader::timeToSleep() const {
    const std::optional<QDateTime> next = schedule_.next();
    const QDateTime now = utcNow();
    if (roundStart_.isValid() || !next || *next <= now)
        return longestSleep;
    return std::min(std::chrono::milliseconds(now.msecsTo(*next)), longestSleep);
}

void Downloader::lookAfterRound(bool isRoundWanted) {
    if (isRoundOver_)
        noteEndOfRound();
    if (roundStart_.isValid())
        return;
    const QDateTime now = utcNow();
    isRoundWanted_ = isRoundWanted;
    if (isRoundWanted)
        startRound({now, now}); // not a day from the last one, so feeds that fail are left alone
    else if (uptime() >= notBefore_ && network_.isSettled())
        startDueRound(now);
}

void Downloader::startDueRound(const QDateTime &now) {
    const std::optional<AutoSchedule::Round> due = schedule_.dueRound(now, uptime());
    const bool wasBarred = std::exchange(isBarred_, due && due->isBarred);
    if (isBarred_ && !wasBarred)
        log_.info(QStringLiteral("the automatic update waits: roaming, or a metered connection"));
    if (due && !due->isBarred)
        startRound({now, due->since, due->isDaily});
}

void Downloader::noteEndOfRound() {
    round_.join();
    isRoundOver_ = false;
    if (isRoundDone_) {
        futileRounds_ = 0;
        notBefore_ = 0ms;
        schedule_.endRound(roundStart_);
    } else if (!isRoundWanted_) {
        log_.warning(QStringLiteral("the automatic update will be tried again"));
        if (!hasNetworkCome_)
            notBefore_ = uptime() + timeToRecover(++futileRounds_);
    }
    roundStart_ = {};
    giveBackMemory();
}

void Downloader::startRound(const AutoRound &round) {
    roundStart_ = round.start;
    hasNetworkCome_ = false;
    if (!round_.start([this, round] { runRound(round); })) {
        log_.error(QStringLiteral("no thread for the automatic update"));
        roundStart_ = {};
    }
}

void Downloader::runRound(const AutoRound &round) {
    FeedStore store(device_, registry_, todayItemKey_);
    AutoRoundResult result;
    if (store.Open()) {
        HttpLimits limits;
        limits.stop = &interrupt_.stopSignal();
        result = runAutoRound({device_, registry_, store, limits}, round,
                              [this](const RefreshJob &job, const RefreshResult &ended) {
                                  log_.result(job.channelName, ended);
                              });
        log_.info(summary(result));
        publishNews(result);
    } else {
        log_.error(QStringLiteral("the database cannot be opened (%1)").arg(store.error()));
    }
    // A round that was stopped goes on at the next start.
    if (interrupt_.isStopped())
        return;
    isRoundDone_ = result.isOver;
    isRoundOver_ = true;
    interrupt_.wake();
}

void Downloader::publishNews(const AutoRoundResult &result) {
    SettingsStore settings(registry_);
    if (!publishRoundNews(
            device_, settings, todayItemKey_,
            {static_cast<quint32>(result.storedCount), static_cast<quint32>(result.newChannels)}))
        log_.warning(QStringLiteral("the Today item cannot learn of the new articles"));
}

} // namespace tidebrook
