#pragma once

#include "platform/base/device_root.h"
#include "platform/base/file_identity.h"
#include "platform/sql/registry.h"
#include "platform/sync/named_event.h"
#include "platform/sync/stop_signal.h"
#include "platform/sync/wake_signal.h"
#include "service/request_server.h"
#include "service/service_log.h"
#include "update/auto_round.h"
#include "update/auto_schedule.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <utility>

namespace tidebrook {

/// The background downloader: answers requests, and runs the automatic updates when they are due.
/// While there is nothing to do it sleeps, and looks once a minute whether there is.
class Downloader {
public:
    Downloader(const DeviceRoot &device, const QString &todayItemKey, ServiceLog &log);
    /// Ends what is under way.
    ~Downloader();
    Downloader(const Downloader &) = delete;
    Downloader &operator=(const Downloader &) = delete;

    /// False when requests cannot be heard, or settings cannot be read.
    bool isReady() { return request_.isOpen() && registry_.isOpen(); }

    /// Works until it is stopped (true) or the device is gone.
    bool run();

    /// Ends `run`, also what it has under way. From any thread, and from a signal handler.
    void stop();

private:
    FileIdentities files() const;
    std::chrono::milliseconds timeToSleep() const;
    void lookAfterRound();
    void noteEndOfRound();
    void startRound(const AutoRound &round);
    void runRound(const AutoRound &round);

    const DeviceRoot device_;
    const QString todayItemKey_;
    ServiceLog &log_;
    Registry registry_;
    NamedEvent request_;
    StopSignal stop_;
    WakeSignal wake_;
    AutoSchedule schedule_;

    int futileRounds_ = 0;                   // in a row, which have to be run again
    std::chrono::milliseconds notBefore_{0}; // uptime; the next round

    QDateTime roundStart_;     // of the round that is running, or whose end is still to be noted
    bool isRoundDone_ = false; // every channel had its turn; written before isRoundOver_
    std::atomic<bool> isRoundOver_ = false;
    RequestServer server_;
    std::jthread round_; // the first to end
};

} // namespace tidebrook
