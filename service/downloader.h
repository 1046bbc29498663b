#pragma once

#include "platform/base/device_root.h"
#include "platform/base/file_identity.h"
#include "platform/sql/registry.h"
#include "platform/sync/interrupt.h"
#include "platform/sync/named_event.h"
#include "platform/sync/tasks.h"
#include "service/network_values.h"
#include "service/request_server.h"
#include "service/service_log.h"
#include "update/auto_round.h"
#include "update/auto_schedule.h"

#include <QDateTime>
#include <QString>

#include <atomic>
#include <chrono>

namespace tidebrook {

/// The background downloader: answers requests, and runs the automatic updates when they are due or
/// asked for. While there is nothing to do it sleeps, and looks once a minute whether a round is
/// due.
class Downloader {
public:
    /// The log and the interrupt outlive it.
    Downloader(const DeviceRoot &device, const QString &todayItemKey, ServiceLog &log,
               Interrupt &interrupt);
    /// Stops what is under way.
    ~Downloader();
    Downloader(const Downloader &) = delete;
    Downloader &operator=(const Downloader &) = delete;

    /// False when requests cannot be received, or settings cannot be read.
    bool isReady() { return request_.isOpen() && roundRequest_.isOpen() && registry_.isOpen(); }

    /// Works until the interrupt is stopped (true), which also ends what is under way, or the
    /// device is gone.
    bool run();

private:
    FileIdentities files() const;
    std::chrono::milliseconds timeToSleep() const;
    void lookAfterRound(bool isRoundWanted);
    void startDueRound(const QDateTime &now);
    void noteEndOfRound();
    void startRound(const AutoRound &round);
    void runRound(const AutoRound &round);
    void publishNews(const AutoRoundResult &result);

    const DeviceRoot device_;
    const QString todayItemKey_;
    ServiceLog &log_;
    Registry registry_;
    NamedEvent request_;
    NamedEvent roundRequest_;
    Interrupt &interrupt_; // woken by the end of a round
    AutoSchedule schedule_;
    NetworkValues network_;

    bool isBarred_ = false;                  // a round that is due, as the log has it
    int futileRounds_ = 0;                   // in a row, which have to be run again
    std::chrono::milliseconds notBefore_{0}; // uptime; the next round
    bool hasNetworkCome_ = false;            // since the last round began

    QDateTime roundStart_;       // of the round that is running, or whose end is still to be noted
    bool isRoundWanted_ = false; // by the user, and so not to be run again
    bool isRoundDone_ = false;   // every channel had its turn; written before isRoundOver_
    std::atomic<bool> isRoundOver_ = false;
    RequestServer server_;
    Threads round_; // the first to end
};

} // namespace tidebrook
