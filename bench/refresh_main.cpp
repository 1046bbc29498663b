#include "bench/measured_region.h"
#include "update/refresh.h"

#include <curl/curl.h>

#include <cstdio>

// bench_refresh HOME CATEGORY JOBS {CHANNEL URL}...

namespace tidebrook {

namespace {

QList<RefreshJob> readJobs(int argc, char **argv) {
    QList<RefreshJob> jobs;
    for (int i = 4; i + 1 < argc; i += 2) {
        jobs.append({QString::fromLocal8Bit(argv[i + 1]), QString::fromLocal8Bit(argv[i]),
                     QString::fromLocal8Bit(argv[2])});
    }
    return jobs;
}

QList<RefreshResult> refresh(const RefreshTarget &target, const QList<RefreshJob> &jobs,
                             int parallel) {
    if (jobs.size() == 1)
        return {refreshChannel(target, jobs.first())};
    return refreshChannels(target, jobs, parallel, [](qsizetype, const RefreshResult &) {});
}

bool report(const MeasuredRegion &region, const QList<RefreshResult> &results) {
    int items = 0;
    int stored = 0;
    for (const RefreshResult &result : results) {
        if (result.error != 0) {
            std::fprintf(stderr, "bench_refresh: a refresh failed with code %u\n", result.error);
            return false;
        }
        items += result.counts.total;
        stored += result.storedCount;
    }
    region.print(items, stored);
    return true;
}

} // namespace

} // namespace tidebrook

int main(int argc, char **argv) {
    using namespace tidebrook;
    if (argc < 6) {
        std::fprintf(stderr, "usage: bench_refresh HOME CATEGORY JOBS {CHANNEL URL}...\n");
        return 2;
    }
    const DeviceRoot device(QString::fromLocal8Bit(argv[1]));
    Registry registry(device);
    FeedStore store(device, registry, QStringLiteral("Bench"));
    if (!registry.isOpen() || !store.OpenExisting()) {
        std::fprintf(stderr, "bench_refresh: %s cannot be opened\n", argv[1]);
        return 1;
    }
    const QList<RefreshJob> jobs = readJobs(argc, argv);
    const int parallel = QByteArray(argv[3]).toInt();
    curl_global_init(CURL_GLOBAL_DEFAULT);
    MeasuredRegion region;
    const QList<RefreshResult> results = refresh({device, registry, store, {}}, jobs, parallel);
    region.end();
    return report(region, results) ? 0 : 1;
}
