#include "bench/figures.h"
#include "platform/base/clock.h"
#include "update/auto_round.h"
#include "update/polite_refresh.h"

#include <curl/curl.h>

// bench_refresh HOME JOBS {URL CHANNEL CATEGORY}... refreshes these channels. "bench_refresh HOME"
// is an automatic round over every channel of the list, also those that had one a moment ago; its
// items are the feeds that were unchanged.

namespace tidebrook {

namespace {

Figures refresh(const RefreshTarget &target, const QList<RefreshJob> &jobs, int parallel) {
    Figures counts;
    const auto count = [&](const RefreshResult &result) {
        counts["items"] += result.counts.total;
        counts["stored"] += result.storedCount;
        counts["failed"] += result.error == 0 ? 0 : 1;
    };
    if (jobs.size() == 1) {
        count(refreshChannel(target, jobs.first()));
        return counts;
    }
    UpdateStateStore states(target.device);
    std::vector<FeedTurn> turns;
    for (const RefreshJob &job : jobs)
        turns.push_back({job, {}});
    refreshPolitely(target, states, turns, parallel, utcNow(),
                    {[&](auto, const RefreshResult &result, bool) { count(result); },
                     [&](auto, const QDateTime &) { counts["failed"] += 1; }});
    return counts;
}

Figures runRound(const RefreshTarget &target, const QDateTime &now) {
    const AutoRoundResult result = runAutoRound(target, {.start = now, .since = now.addSecs(1)},
                                                [](const auto &, const auto &) {});
    return {{"items", result.unchanged},
            {"stored", result.storedCount},
            {"failed", result.isOver ? result.failed : 1}};
}

} // namespace

} // namespace tidebrook

int main(int argc, char **argv) {
    using namespace tidebrook;
    QList<RefreshJob> jobs;
    for (int i = 3; i + 2 < argc; i += 3)
        jobs.append({QString::fromUtf8(argv[i]), QString::fromUtf8(argv[i + 1]),
                     QString::fromUtf8(argv[i + 2])});
    const DeviceRoot device(QString::fromLocal8Bit(argv[1]));
    Registry registry(device);
    FeedStore store(device, registry, QStringLiteral("Bench"));
    const RefreshTarget target{device, registry, store, {}};
    if (!registry.isOpen() || !store.OpenExisting())
        return 1;
    const QDateTime now = utcNow();
    Figures counts;
    curl_global_init(CURL_GLOBAL_DEFAULT);
    Figures figures = measureRegion([&] {
        counts = jobs.isEmpty() ? runRound(target, now)
                                : refresh(target, jobs, QByteArray(argv[2]).toInt());
    });
    figures.merge(counts);
    printFigures("work", figures);
}
