#include "bench/floor.h"
#include "bench/measured_region.h"

#include <curl/curl.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <stdexcept>

// bench_floor DATABASE CATEGORY JOBS {CHANNEL URL}...

namespace tidebrook {

namespace {

struct Feeds {
    std::vector<FloorStore::Channel> channels;
    std::vector<std::string> urls;
};

Feeds readFeeds(int argc, char **argv, const std::string &category) {
    Feeds feeds;
    for (int i = 4; i + 1 < argc; i += 2) {
        feeds.channels.push_back({argv[i], category, std::time(nullptr)});
        feeds.urls.emplace_back(argv[i + 1]);
    }
    return feeds;
}

FloorStore::Counts refresh(FloorStore &store, const Feeds &feeds, std::size_t jobs) {
    FloorStore::Counts sum;
    const auto take = [&](std::size_t index, const std::string &body) {
        store.begin();
        const FloorStore::Counts counts = store.insertFeed(body, feeds.channels[index]);
        store.commit();
        sum.items += counts.items;
        sum.stored += counts.stored;
    };
    if (feeds.urls.size() == 1)
        take(0, floorFetch(feeds.urls[0]));
    else
        floorFetchAll(feeds.urls, jobs, take);
    return sum;
}

} // namespace

} // namespace tidebrook

int main(int argc, char **argv) {
    using namespace tidebrook;
    if (argc < 6) {
        std::fprintf(stderr, "usage: bench_floor DATABASE CATEGORY JOBS {CHANNEL URL}...\n");
        return 2;
    }
    try {
        FloorStore store(argv[1]);
        const Feeds feeds = readFeeds(argc, argv, argv[2]);
        const std::size_t jobs = std::strtoul(argv[3], nullptr, 10);
        curl_global_init(CURL_GLOBAL_DEFAULT);
        MeasuredRegion region;
        const FloorStore::Counts counts = refresh(store, feeds, jobs);
        region.end();
        region.print(counts.items, counts.stored);
        return 0;
    } catch (const std::runtime_error &error) {
        std::fprintf(stderr, "bench_floor: %s\n", error.what());
        return 1;
    }
}
