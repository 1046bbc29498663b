#include "bench/measured_region.h"
#include "platform/base/clock.h"
#include "update/auto_list.h"
#include "update/auto_round.h"

#include <curl/curl.h>

#include <cstdio>

// bench_round HOME: an automatic round over every channel of the list, also those that one had a
// moment ago. Says how many were unchanged, and how many articles were new.

int main(int argc, char **argv) {
    using namespace tidebrook;
    if (argc != 2) {
        std::fprintf(stderr, "usage: bench_round HOME\n");
        return 2;
    }
    const DeviceRoot device(QString::fromLocal8Bit(argv[1]));
    Registry registry(device);
    FeedStore store(device, registry, QStringLiteral("Bench"));
    if (!registry.isOpen() || !store.OpenExisting()) {
        std::fprintf(stderr, "bench_round: %s cannot be opened\n", argv[1]);
        return 1;
    }
    curl_global_init(CURL_GLOBAL_DEFAULT);
    const QDateTime now = utcNow();
    MeasuredRegion region;
    const AutoRoundResult result =
        runAutoRound({device, registry, store, {}}, {.start = now, .since = now.addSecs(1)},
                     [](const RefreshJob &, const RefreshResult &) {});
    region.end();
    if (result.failed > 0 || !result.isOver) {
        std::fprintf(stderr, "bench_round: tried %d channels, of which %d failed\n", result.tried,
                     result.failed);
        return 1;
    }
    region.print(result.unchanged, result.storedCount);
    return 0;
}
