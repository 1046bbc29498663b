// The background downloader: asleep, until it is at work, and at work.

#include "bench/bench.h"
#include "bench/store_maker.h"
#include "platform/base/clock.h"
#include "platform/base/replace_file.h"
#include "platform/sync/named_event.h"
#include "store/settings_store.h"
#include "update/auto_schedule.h"
#include "update/channel_file.h"
#include "update/download_request.h"
#include "update/request_file.h"

#include <thread>

namespace tidebrook {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int feedItems = 30;
constexpr int usualFeeds = 50;
constexpr int roundFeeds = 200;
constexpr int requestCount = 20;

constexpr double latencyAllowed = 20; // ms
constexpr double wakeUpsAllowed = 3;  // one a minute, in the time of the watch

// A device that has never had a round has one due.
QString makeDevice(const Bench &bench, const QString &name, const QList<RefreshJob> &feeds,
                   bool isRoundDue) {
    QString home = bench.folder.filePath(u"service-"_s + name);
    makeStore(home, {.feeds = feeds, .areAutomatic = true});
    const DeviceRoot device(home);
    Registry registry(device);
    SettingsStore settings(registry);
    settings.setDword(programKey, u"UpdateMode", AutoUpdateSettings::Interval);
    settings.setDword(programKey, u"UpdateInterval", 6);
    if (!isRoundDue)
        AutoSchedule(registry).endRound(utcNow());
    return home;
}

/// Has the service of a device update a channel; when that was asked for.
std::chrono::steady_clock::time_point request(const QString &home, const RefreshJob &channel) {
    const DeviceRoot device(home);
    DownloadAnswers answers(device);
    NamedEvent event(device, requestEvent, NamedEvent::Reset::Manual);
    const bool isWritten =
        replaceFile(requestFilePath(device), encodeChannelFile(channelLine(channel)));
    answers.expect();
    const auto start = std::chrono::steady_clock::now();
    require(isWritten && event.set() && answers.wait(30s) == DownloadAnswer::Done,
            u"a request is answered"_s);
    return start;
}

// --- the memory of a service that sleeps ---

void measureMemory(Bench &bench, const char *name, const QString &store,
                   const QStringList &libraries,
                   const std::function<void(Service &, const QString &home)> &prepare) {
    Runs ofService;
    Runs ofEmpty;
    for (int run = 0; run < bench.runs; ++run) {
        const StoreCopy copy(store);
        Service service(copy.home);
        const BackgroundProcess empty(u"bench_idle"_s, libraries, "ready");
        prepare(service, copy.home);
        awaitIdle(service.id());
        require(librariesOf(service.id()) == librariesOf(empty.id()),
                u"the empty program has the service's libraries"_s);
        const auto both = memoryOf(service.id(), empty.id());
        ofService.push_back(both[0]);
        ofEmpty.push_back(both[1]);
    }
    // Other programs with the same libraries share the Pss, but nothing else.
    bench.report.compare(std::string(name) + ": ", ofService, ofEmpty,
                         {{"Pss", "Pss, KiB"},
                          {"alone", "as if alone, KiB", 1, 0, 1.3},
                          {"Rss", "Rss, KiB"},
                          {"Anonymous", "anonymous, KiB"}});
}

void measureMemory(Bench &bench, const QList<RefreshJob> &feeds) {
    bench.report.section("The service asleep, beside an empty program with its libraries", "empty",
                         "feedlarkd");
    const QString idle = makeDevice(bench, u"idle"_s, feeds.first(usualFeeds), false);
    const QString due = makeDevice(bench, u"due"_s, feeds.first(usualFeeds), true);
    measureMemory(bench, "started", idle, {}, [](auto &, auto &) {});
    measureMemory(bench, "after a round", due, {u"curl"_s}, [](Service &service, auto &) {
        service.awaitLine("automatic update: " + QByteArray::number(usualFeeds) + " channels");
    });
    measureMemory(bench, "after a request", idle, {u"curl"_s},
                  [&](auto &, const QString &home) { request(home, feeds.first()); });
}

// --- how often it wakes up for nothing ---

void countWakeUps(Bench &bench, const QList<RefreshJob> &feeds) {
    bench.report.section("The service asleep for 130 s, with no round due", "allowed", "feedlarkd");
    const QString home = makeDevice(bench, u"watched"_s, feeds.first(usualFeeds), false);
    const Service service(home);
    awaitIdle(service.id());
    const double before = sleepsOf(service.id());
    std::this_thread::sleep_for(130s);
    bench.report.compare({}, {{{"count", sleepsOf(service.id()) - before}}},
                         {{{"count", wakeUpsAllowed}}}, {{"count", "wake-ups", 1, 0, 1.0}});
}

// --- how soon a request is at the server ---

void measureLatency(Bench &bench, const RefreshJob &feed, FeedServer &server) {
    bench.report.section("From a request's event to its first byte at the server, 20 requests each",
                         "allowed", "feedlarkd");
    const QString home = makeDevice(bench, u"asked"_s, {feed}, false);
    const auto latencyOf = [&](const Service &service) -> Figures {
        awaitIdle(service.id());
        server.clearRequests();
        const auto start = request(home, feed);
        const std::chrono::duration<double> latency = server.requests().first().arrived - start;
        return {{"latency", latency.count()}};
    };
    Runs first;
    for (int i = 0; i < requestCount; ++i)
        first.push_back(latencyOf(Service(home)));
    bench.report.limit("first of a service", first, "latency", latencyAllowed);
    const Service service(home);
    request(home, feed);
    Runs later;
    for (int i = 0; i < requestCount; ++i)
        later.push_back(latencyOf(service));
    bench.report.limit("later ones", later, "latency", latencyAllowed);
}

// --- what a round costs when nothing has changed ---

void measureRounds(Bench &bench, const QList<RefreshJob> &feeds, FeedServer &server) {
    bench.report.section("An automatic round over 200 feeds of 30 items, none of which has changed",
                         "full bodies", "validators");
    const QString store = makeDevice(bench, u"round"_s, feeds, true);
    const auto runRound = [&](const QString &home, double unchanged, double stored) {
        server.clearCounts();
        Figures figures = bench.measure(u"bench_refresh"_s, {home}, Extent::Region);
        require(figures["items"] == unchanged && figures["stored"] == stored &&
                    figures["failed"] == 0,
                u"a round finds what is new"_s);
        figures["bytes"] = static_cast<double>(server.bytesSent() + server.bytesReceived());
        return figures;
    };
    runRound(store, 0, roundFeeds * feedItems);
    std::vector<Side> sides;
    for (const bool haveValidators : {true, false})
        sides.emplace_back([&, haveValidators] {
            serveFeeds(server, roundFeeds, feedItems, haveValidators);
            return runRound(StoreCopy(store).home, haveValidators ? roundFeeds : 0, 0);
        });
    const std::vector<Runs> both = bench.takeTurns(sides);
    constexpr double microseconds = 1e6;
    bench.report.compare({}, both[0], both[1],
                         {{"instructions", "instructions/feed", 1.0 / roundFeeds},
                          {"cpu", "CPU/feed, us", microseconds / roundFeeds, 0, 1.0 / 3},
                          {"wall", "wall time/feed, us", microseconds / roundFeeds},
                          {"bytes", "bytes/feed, both ways", 1.0 / roundFeeds, 0, 1.0 / 20}});
}

} // namespace

void measureService(Bench &bench) {
    qputenv("TIDEBROOK_PAUSES", "0"); // for the programs that are run
    FeedServer server;
    const QList<RefreshJob> feeds = serveFeeds(server, roundFeeds, feedItems, true);
    measureMemory(bench, feeds);
    if (bench.named.contains(u"service"_s))
        countWakeUps(bench, feeds);
    measureLatency(bench, feeds.first(), server);
    measureRounds(bench, feeds, server);
    qunsetenv("TIDEBROOK_PAUSES");
}

} // namespace tidebrook
