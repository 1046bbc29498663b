#pragma once

#include "bench/report.h"
#include "bench/runner.h"
#include "bench/series.h"
#include "bench/store_maker.h"
#include "feed_server/feed_server.h"

#include <QString>

#include <functional>

namespace tidebrook {

struct Options;

/// What the background downloader costs: asleep, until it is at work, and at work.
class ServiceCases {
public:
    ServiceCases(const Options &options, const QString &folder, const Runner &runner,
                 Report &report);

    /// Throws std::runtime_error when a measurement fails.
    void run();

private:
    class Service;
    enum class Validators { Sent, Missing };

    /// The rounds over the same feeds, sent only when changed or always.
    struct Rounds {
        Series series;
        double bytes = 0; // of one round, both ways
    };

    void measureMemory();
    void measureMemory(const QString &name, const QString &store,
                       const std::function<void(Service &)> &preparation);

    void countWakeUps();

    void measureLatency();
    void reportLatency(const QString &name, const std::vector<double> &latencies);
    double latencyOf(Service &service);

    void measureRounds();
    void runRound(Rounds &rounds, const QString &store, Validators validators);
    void countRound(Rounds &rounds, const QString &store, Validators validators);
    void check(const Sample &sample, Validators validators) const;
    void reportRounds(const Rounds &unchanged, const Rounds &full);

    Feeds feeds(int count) const;
    QString makeDevice(const QString &name, int feedCount, bool isRoundDue) const;

    const Options &options_;
    const QString folder_;
    const Runner &runner_;
    Report &report_;
    FeedServer server_;
};

} // namespace tidebrook
