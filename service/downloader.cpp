#include "service/downloader.h"

#include "platform/clock.h"
#include "platform/wait_any.h"

#include <QFile>

#include <malloc.h>
#include <sys/stat.h>

#include <algorithm>
#include <system_error>

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

} // namespace

Downloader::Downloader(const DeviceRoot &device, const QString &todayItemKey, ServiceLog &log)
    : device_(device), todayItemKey_(todayItemKey), log_(log), registry_(device),
      request_(device, requestEvent, NamedEvent::Reset::Manual), schedule_(registry_),
      server_(device, registry_, todayItemKey, log, stop_) {
    struct stat status {};
    if (stat(QFile::encodeName(device_.path()).constData(), &status) == 0)
        deviceFolder_ = status.st_ino;
}

Downloader::~Downloader() { stop_.raise(); }

void Downloader::stop() {
    stop_.raise();
    wake_.raise();
}

void Downloader::run() {
    while (!stop_.isRaised()) {
        lookAfterRound();
        const WaitResult result = WaitAny({&request_}, wake_.descriptor(), timeToSleep());
        if (result.kind == WaitResult::Kind::Failed || !isDeviceThere()) {
            log_.error(QStringLiteral("%1: the device is no longer there").arg(device_.path()));
            return;
        }
        if (result.kind == WaitResult::Kind::Event) {
            // Before the file is read, so that a request that comes meanwhile is not lost.
            request_.reset();
            server_.serveLatest();
        } else if (result.kind == WaitResult::Kind::Input) {
            wake_.clear();
        }
    }
}

// One that was put in its place, as from a backup, is another: what is open here is not of it.
bool Downloader::isDeviceThere() const {
    struct stat status {};
    return stat(QFile::encodeName(device_.path()).constData(), &status) == 0 &&
           status.st_ino == deviceFolder_;
}

// Settings and the clock are looked at every minute; who changes them tells nobody.
std::chrono::milliseconds Downloader::timeToSleep() const {
    const std::optional<QDateTime> next = schedule_.next();
    const QDateTime now = utcNow();
    if (roundStart_.isValid() || !next || *next <= now)
        return longestSleep;
    return std::min(std::chrono::milliseconds(now.msecsTo(*next)), longestSleep);
}

void Downloader::lookAfterRound() {
    if (isRoundOver_) {
        round_.join();
        isRoundOver_ = false;
        schedule_.endRound(roundStart_);
        roundStart_ = {};
        // What a round has needed goes back: the service sleeps for most of its life.
        malloc_trim(0);
    }
    if (roundStart_.isValid())
        return;
    const QDateTime now = utcNow();
    const std::optional<AutoSchedule::Round> due = schedule_.dueRound(now, uptime());
    if (!due)
        return;
    if (due->isBarred) {
        log_.info(QStringLiteral("automatic update left out: roaming, or not in the cradle"));
        schedule_.endRound(now);
        return;
    }
    startRound({now, due->since, due->isDaily});
}

void Downloader::startRound(const AutoRound &round) {
    roundStart_ = round.start;
    try {
        round_ = std::jthread([this, round] { runRound(round); });
    } catch (const std::system_error &error) {
        log_.error(QStringLiteral("no thread for the automatic update: %1")
                       .arg(QString::fromLocal8Bit(error.what())));
        roundStart_ = {};
    }
}

void Downloader::runRound(const AutoRound &round) {
    FeedStore store(device_, registry_, todayItemKey_);
    if (store.Open()) {
        HttpLimits limits;
        limits.stop = &stop_;
        const AutoRoundResult result =
            runAutoRound({device_, registry_, store, limits}, round,
                         [this](const RefreshJob &job, const RefreshResult &ended) {
                             log_.result(job.channelName, ended.error, ended.storedCount);
                         });
        log_.info(summary(result));
    } else {
        log_.error(QStringLiteral("the database cannot be opened: %1").arg(store.error()));
    }
    // A round that was broken off is not over: the next start goes on with it.
    if (stop_.isRaised())
        return;
    isRoundOver_ = true;
    wake_.raise();
}

} // namespace tidebrook
