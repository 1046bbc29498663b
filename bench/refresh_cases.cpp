// The way of feeds into the store, and the list of channels.

#include "bench/bench.h"
#include "bench/store_maker.h"

#include <QLocale>

namespace tidebrook {

using namespace Qt::StringLiterals;

namespace {

constexpr int manyItems = 10'000;
constexpr int usualItems = 100; // of a feed, and of a channel
constexpr double milliseconds = 1e3;
constexpr double mebibytes = 1.0 / 1024;

/// The two programs that do the same work: ours, and the floor.
const QStringList refreshers{u"bench_refresh"_s, u"bench_floor"_s};

std::string grouped(int number) { return QLocale(QLocale::English).toString(number).toStdString(); }

/// Feeds, and how they are refreshed. They come to so many items, lest something else is measured.
struct Refreshes {
    QList<RefreshJob> feeds;
    int items;
    int jobs = 1;

    Figures refresh(const Bench &bench, const QString &program, const QString &home,
                    int stored) const {
        QStringList arguments{home, QString::number(jobs)};
        for (const RefreshJob &feed : feeds)
            arguments << feed.url << feed.channelName << feed.category;
        Figures figures = bench.measure(program, arguments, Extent::Region);
        require(figures["items"] == items && figures["stored"] == stored && figures["failed"] == 0,
                program + u" has all items, and stores the new ones");
        return figures;
    }
};

/// For the first time and again unchanged; of each, the figures by names of their own.
Figures refreshTwice(const Bench &bench, const QString &program, const QString &store,
                     const Refreshes &load) {
    const StoreCopy copy(store);
    Figures both;
    for (const auto &[name, value] : load.refresh(bench, program, copy.home, load.items))
        both["first " + name] = value;
    for (const auto &[name, value] : load.refresh(bench, program, copy.home, 0))
        both["unchanged " + name] = value;
    return both;
}

void refreshOneFeed(Bench &bench, int items) {
    FeedServer server;
    const Refreshes load{serveFeeds(server, 1, items), items};
    const QString store = bench.folder.filePath(u"one-%1"_s.arg(items));
    makeStore(store, {.feeds = load.feeds});
    std::vector<Side> sides;
    for (const QString &program : refreshers)
        sides.emplace_back([&] { return refreshTwice(bench, program, store, load); });
    const std::vector<Runs> both = bench.takeTurns(sides);
    const auto wanted = items == manyItems ? std::optional(1.0) : std::nullopt;
    for (const std::string time : {"first", "unchanged"})
        bench.report.compare(grouped(items) + " items, " + time + ": ", both[0], both[1],
                             {{time + " instructions", "instructions/item", 1.0 / items, 0, 0.9},
                              {time + " cpu", "CPU, ms", milliseconds, 2},
                              {time + " peak", "peak, MiB", mebibytes, 1, wanted}});
}

} // namespace

void refreshOneFeed(Bench &bench) {
    bench.report.section("One feed, refreshed for the first time and again unchanged", "floor");
    for (const int items : {1'000, manyItems})
        refreshOneFeed(bench, items);
}

void refreshBesideOthers(Bench &bench) {
    bench.report.section("100 new items beside articles of other feeds", "1,000", "that many");
    FeedServer server;
    const Refreshes load{serveFeeds(server, 1, usualItems), usualItems};
    const std::vector<int> held{1'000, 10'000, 100'000};
    std::vector<Side> sides;
    for (const int articles : held) {
        const QString store = bench.folder.filePath(u"held-%1"_s.arg(articles));
        makeStore(store, {.filledChannels = articles / usualItems,
                          .articlesPerChannel = usualItems,
                          .categories = 10,
                          .feeds = load.feeds});
        sides.emplace_back([&, store] {
            return load.refresh(bench, refreshers[0], StoreCopy(store).home, usualItems);
        });
    }
    const std::vector<Runs> all = bench.takeTurns(sides);
    for (std::size_t i = 1; i < held.size(); ++i) {
        const auto wanted = held[i] == held.back() ? std::optional(1.2) : std::nullopt;
        bench.report.compare(grouped(held[i]) + " articles: ", all[i], all[0],
                             {{"instructions", "instructions/item", 1.0 / usualItems, 0, wanted},
                              {"cpu", "CPU, ms", milliseconds, 2}});
    }
}

void refreshManyFeeds(Bench &bench) {
    bench.report.section(
        "50 feeds of 100 items on hosts of their own, answered after 100 ms, 8 at a time", "floor");
    FeedServer server;
    Refreshes load{serveFeeds(server, 50, usualItems), 50 * usualItems, 8};
    for (qsizetype i = 0; i < load.feeds.size(); ++i) // which are not asked for two at a time
        load.feeds[i].url.replace(u"127.0.0.1"_s, u"%1.localhost"_s.arg(i));
    server.setDelay(std::chrono::milliseconds(100));
    const QString store = bench.folder.filePath(u"many"_s);
    makeStore(store, {.feeds = load.feeds});
    std::vector<Side> sides;
    for (const QString &program : refreshers)
        sides.emplace_back(
            [&] { return load.refresh(bench, program, StoreCopy(store).home, load.items); });
    const std::vector<Runs> both = bench.takeTurns(sides);
    bench.report.compare({}, both[0], both[1],
                         {{"wall", "wall time, ms", milliseconds, 0, 1.2},
                          {"cpu", "CPU, ms", milliseconds},
                          {"peak", "peak, MiB", mebibytes, 1}});
}

void listChannels(Bench &bench) {
    bench.report.section("'tidebrookctl channels'; 600 channels with 60,000 articles",
                         "empty store", "full store");
    std::vector<Side> sides;
    for (const int channels : {600, 0}) {
        const QString home = bench.folder.filePath(u"list-%1"_s.arg(channels));
        makeStore(home,
                  {.filledChannels = channels, .articlesPerChannel = usualItems, .categories = 12});
        sides.emplace_back([&, home] {
            return bench.measure(u"tidebrookctl"_s, {u"--home"_s, home, u"channels"_s},
                                 Extent::Whole);
        });
    }
    const std::vector<Runs> both = bench.takeTurns(sides);
    bench.report.compare({}, both[0], both[1],
                         {{"instructions", "instructions", 1, 0, 2.0},
                          {"cpu", "CPU, ms", milliseconds, 2},
                          {"wall", "wall time, ms", milliseconds, 2}});
}

} // namespace tidebrook
