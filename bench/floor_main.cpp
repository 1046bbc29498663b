#include "bench/figures.h"
#include "bench/floor.h"

#include <curl/curl.h>

#include <ctime>

// bench_floor HOME JOBS {URL CHANNEL CATEGORY}...
int main(int argc, char **argv) {
    using namespace tidebrook;
    std::vector<FloorStore::Channel> channels;
    std::vector<std::string> urls;
    for (int i = 3; i + 2 < argc; i += 3) {
        urls.emplace_back(argv[i]);
        channels.push_back({argv[i + 1], argv[i + 2], std::time(nullptr)});
    }
    FloorStore store(argv[1]);
    FloorStore::Counts sum;
    const auto take = [&](std::size_t index, const std::string &body) {
        store.begin();
        const FloorStore::Counts counts = store.insertFeed(body, channels[index]);
        store.commit();
        sum.items += counts.items;
        sum.stored += counts.stored;
    };
    curl_global_init(CURL_GLOBAL_DEFAULT);
    Figures figures = measureRegion([&] {
        if (urls.size() == 1)
            take(0, floorFetch(urls[0]));
        else
            floorFetchAll(urls, std::stoul(argv[2]), take);
    });
    figures.insert({{"items", sum.items}, {"stored", sum.stored}});
    printFigures("work", figures);
}
