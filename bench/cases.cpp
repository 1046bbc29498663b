#include "bench/cases.h"

#include "bench/floor.h"
#include "bench/reader_cases.h"
#include "bench/screen_cases.h"
#include "bench/service_cases.h"
#include "bench/sharing_cases.h"
#include "bench/store_maker.h"

#include <QDir>
#include <QLocale>

#include <utility>

namespace tidebrook {

namespace {

constexpr int fewItems = 1'000;
constexpr int manyItems = 10'000;
constexpr int usualItems = 100; // of a feed, and of a channel
constexpr std::array heldArticles{1'000, 10'000, 100'000};
constexpr int feedCount = 50;
constexpr int answerDelay = 100; // ms
constexpr int jobCount = 8;
constexpr int channelCount = 600;

// The highest ratios that are wanted.
constexpr double refreshTarget = 0.9;
constexpr double memoryTarget = 1.0;
constexpr double heldTarget = 1.2;
constexpr double parallelTarget = 1.2;
constexpr double listTarget = 2.0;

QString grouped(int number) { return QLocale(QLocale::English).toString(number); }

QString refreshedChannel(int number) { return QStringLiteral("Refreshed feed %1").arg(number); }

QStringList refreshedChannels(int count) {
    QStringList names;
    for (int i = 0; i < count; ++i)
        names.append(refreshedChannel(i));
    return names;
}

QStringList listArguments(const QString &home) {
    return {QStringLiteral("--home"), home, QStringLiteral("channels")};
}

const QString listProgram = QStringLiteral("tidebrookctl");

} // namespace

Cases::Cases(const Options &options, const QString &folder)
    : options_(options), folder_(folder), runner_(folder, options.profiles) {}

const QStringList &Cases::names() {
    static const QStringList names{QStringLiteral("one"),     QStringLiteral("held"),
                                   QStringLiteral("many"),    QStringLiteral("channels"),
                                   QStringLiteral("service"), QStringLiteral("reader"),
                                   QStringLiteral("screens"), QStringLiteral("sharing")};
    return names;
}

void Cases::run() {
    const auto isWanted = [this](qsizetype number) {
        return options_.cases.isEmpty() || options_.cases.contains(names()[number]);
    };
    if (isWanted(0))
        refreshOneFeed();
    if (isWanted(1))
        refreshBesideOthers();
    if (isWanted(2))
        refreshManyFeeds();
    if (isWanted(3))
        listChannels();
    if (isWanted(4))
        ServiceCases(options_, folder_, runner_, report_).run();
    if (isWanted(5))
        ReaderCases(options_, folder_, runner_, report_).run();
    if (isWanted(6))
        ScreenCases(options_, folder_, runner_, report_).run();
    if (isWanted(7))
        SharingCases(options_, folder_, runner_, report_).run();
    report_.note(QStringLiteral("\nMedians of %1 runs, taken in turns; %2.\n%3 targets met, %4 not "
                                "met.")
                     .arg(options_.runs)
                     .arg(options_.counts ? QStringLiteral("instructions of one run more")
                                          : QStringLiteral("instructions only with --counts"))
                     .arg(report_.metCount())
                     .arg(report_.missedCount()));
}

// --- one feed, beside the floor ---

void Cases::refreshOneFeed() {
    report_.section(QStringLiteral("One feed, refreshed for the first time and again unchanged"),
                    labelOf(Side::Ours), labelOf(Side::Floor));
    refreshOneFeed(fewItems);
    refreshOneFeed(manyItems);
}

void Cases::refreshOneFeed(int items) {
    const ServerProcess server(0);
    const Feeds feeds{{refreshedChannel(0), server.feed(items, 1)}};
    warmUp(feeds);
    const QString store = path(QStringLiteral("one-%1").arg(items));
    makeStore(store, {.emptyChannels = refreshedChannels(1)});
    BothSides both;
    for (int run = 0; run < options_.runs; ++run) {
        for (const Side side : sides) {
            Refreshes &refreshes = both[static_cast<std::size_t>(side)];
            onCopy(store, [&](const QString &home) {
                refreshes.first.samples.push_back(refresh(side, home, feeds, 1, {items, items}));
                refreshes.unchanged.samples.push_back(refresh(side, home, feeds, 1, {items, 0}));
            });
        }
    }
    if (options_.counts)
        countOneFeed(both, store, feeds, items);
    const QString size = grouped(items) + u" items";
    reportOneFeed(both, &Refreshes::first, size + u", first", items);
    reportOneFeed(both, &Refreshes::unchanged, size + u", unchanged", items);
}

void Cases::countOneFeed(BothSides &both, const QString &store, const Feeds &feeds, int items) {
    for (const Side side : sides) {
        Refreshes &refreshes = both[static_cast<std::size_t>(side)];
        const QString profile = QStringLiteral("%1-%2-").arg(labelOf(side)).arg(items);
        onCopy(store, [&](const QString &home) {
            refreshes.first.instructions =
                countRefresh(side, home, feeds, profile + u"first", {items, items});
            refreshes.unchanged.instructions =
                countRefresh(side, home, feeds, profile + u"unchanged", {items, 0});
        });
    }
}

void Cases::reportOneFeed(const BothSides &both, Series Refreshes::*series, const QString &name,
                          int items) {
    const Series &ours = both[0].*series;
    const Series &floor = both[1].*series;
    if (options_.counts)
        report_.row({name + u": instructions/item", ours.instructions / items,
                     floor.instructions / items, 0, refreshTarget});
    report_.row({name + u": CPU, ms", ours.median(&Sample::cpu) * 1000,
                 floor.median(&Sample::cpu) * 1000, 2});
    report_.row({name + u": peak, MiB", ours.median(&Sample::peak), floor.median(&Sample::peak), 1,
                 items == manyItems ? std::optional(memoryTarget) : std::nullopt});
}

// --- a feed into a store that holds others ---

void Cases::refreshBesideOthers() {
    report_.section(QStringLiteral("100 new items into a store that holds articles of others"),
                    QStringLiteral("that many"), QStringLiteral("1,000"));
    const ServerProcess server(0);
    const Feeds feeds{{refreshedChannel(0), server.feed(usualItems, 1)}};
    warmUp(feeds);
    for (const int articles : heldArticles)
        makeStore(heldStore(articles), {.filledChannels = articles / usualItems,
                                        .articlesPerChannel = usualItems,
                                        .categories = 10,
                                        .emptyChannels = refreshedChannels(1)});
    std::array<Series, heldArticles.size()> series;
    for (int run = 0; run < options_.runs; ++run) {
        for (std::size_t i = 0; i < heldArticles.size(); ++i)
            refreshBeside(series[i], heldArticles[i], feeds);
    }
    for (std::size_t i = 0; i < heldArticles.size(); ++i) {
        if (options_.counts)
            countBeside(series[i], heldArticles[i], feeds);
        QDir(heldStore(heldArticles[i])).removeRecursively();
        if (i > 0)
            reportBeside(series[i], series[0], heldArticles[i]);
    }
}

QString Cases::heldStore(int articles) const {
    return path(QStringLiteral("held-%1").arg(articles));
}

void Cases::refreshBeside(Series &series, int articles, const Feeds &feeds) {
    onCopy(heldStore(articles), [&](const QString &home) {
        series.samples.push_back(refresh(Side::Ours, home, feeds, 1, {usualItems, usualItems}));
    });
}

void Cases::countBeside(Series &series, int articles, const Feeds &feeds) {
    onCopy(heldStore(articles), [&](const QString &home) {
        series.instructions =
            countRefresh(Side::Ours, home, feeds, QStringLiteral("held-%1").arg(articles),
                         {usualItems, usualItems});
    });
}

void Cases::reportBeside(const Series &series, const Series &least, int articles) {
    const bool isMost = articles == heldArticles.back();
    const QString name = grouped(articles) + u" articles";
    if (options_.counts)
        report_.row({name + u": instructions/item", series.instructions / usualItems,
                     least.instructions / usualItems, 0,
                     isMost ? std::optional(heldTarget) : std::nullopt});
    report_.row({name + u": CPU, ms", series.median(&Sample::cpu) * 1000,
                 least.median(&Sample::cpu) * 1000, 2});
}

// --- many feeds at a time, beside the floor ---

void Cases::refreshManyFeeds() {
    report_.section(
        QStringLiteral("50 feeds of 100 items, each answered after 100 ms, 8 at a time"),
        labelOf(Side::Ours), labelOf(Side::Floor));
    const ServerProcess server(answerDelay);
    Feeds feeds;
    for (int i = 0; i < feedCount; ++i)
        feeds.append({refreshedChannel(i), server.feed(usualItems, i + 1)});
    warmUp(feeds);
    const QString store = path(QStringLiteral("many"));
    makeStore(store, {.emptyChannels = refreshedChannels(feedCount)});
    constexpr int all = feedCount * usualItems;
    std::array<Series, sides.size()> both;
    for (int run = 0; run < options_.runs; ++run) {
        for (const Side side : sides) {
            onCopy(store, [&](const QString &home) {
                both[static_cast<std::size_t>(side)].samples.push_back(
                    refresh(side, home, feeds, jobCount, {all, all}));
            });
        }
    }
    const auto &[ours, floor] = both;
    report_.row({QStringLiteral("wall time, ms"), ours.median(&Sample::wall) * 1000,
                 floor.median(&Sample::wall) * 1000, 0, parallelTarget});
    report_.row({QStringLiteral("CPU, ms"), ours.median(&Sample::cpu) * 1000,
                 floor.median(&Sample::cpu) * 1000, 0});
    report_.row(
        {QStringLiteral("peak, MiB"), ours.median(&Sample::peak), floor.median(&Sample::peak), 1});
}

// --- the list of channels ---

void Cases::listChannels() {
    report_.section(QStringLiteral("'tidebrookctl channels' as a whole process; 600 channels with "
                                   "60,000 articles"),
                    QStringLiteral("full store"), QStringLiteral("empty store"));
    const QString full = path(QStringLiteral("full"));
    const QString empty = path(QStringLiteral("empty"));
    makeStore(full,
              {.filledChannels = channelCount, .articlesPerChannel = usualItems, .categories = 12});
    makeStore(empty, {});
    Series ofFull;
    Series ofEmpty;
    for (int run = 0; run < options_.runs; ++run) {
        ofFull.samples.push_back(listChannels(full, channelCount));
        ofEmpty.samples.push_back(listChannels(empty, 0));
    }
    if (options_.counts)
        report_.row(
            {QStringLiteral("instructions"),
             runner_.countWhole(listProgram, listArguments(full), QStringLiteral("channels-full")),
             runner_.countWhole(listProgram, listArguments(empty),
                                QStringLiteral("channels-empty")),
             0, listTarget});
    report_.row({QStringLiteral("CPU, ms"), ofFull.median(&Sample::cpu) * 1000,
                 ofEmpty.median(&Sample::cpu) * 1000, 2});
    report_.row({QStringLiteral("wall time, ms"), ofFull.median(&Sample::wall) * 1000,
                 ofEmpty.median(&Sample::wall) * 1000, 2});
    QDir(full).removeRecursively();
}

Sample Cases::listChannels(const QString &home, int expectedLines) const {
    QByteArray output;
    const Sample sample = runner_.runWhole(listProgram, listArguments(home), output);
    if (output.count('\n') == expectedLines)
        return sample;
    throw MeasurementError(QStringLiteral("%1 listed %2 channels, not %3")
                               .arg(listProgram)
                               .arg(output.count('\n'))
                               .arg(expectedLines));
}

// --- what they have in common ---

Sample Cases::refresh(Side side, const QString &home, const Feeds &feeds, int jobs,
                      const Expected &expected) const {
    const Sample sample = runner_.run(programOf(side), argumentsOf(side, home, feeds, jobs));
    check(sample, expected, side);
    return sample;
}

double Cases::countRefresh(Side side, const QString &home, const Feeds &feeds,
                           const QString &profile, const Expected &expected) const {
    Sample sample;
    const double instructions =
        runner_.count(programOf(side), argumentsOf(side, home, feeds, 1), profile, sample);
    check(sample, expected, side);
    return instructions;
}

QString Cases::path(const QString &name) const { return QDir(folder_).filePath(name); }

QString Cases::programOf(Side side) {
    return side == Side::Ours ? QStringLiteral("bench_refresh") : QStringLiteral("bench_floor");
}

QString Cases::labelOf(Side side) {
    return side == Side::Ours ? QStringLiteral("tidebrook") : QStringLiteral("floor");
}

QStringList Cases::argumentsOf(Side side, const QString &home, const Feeds &feeds, int jobs) {
    QStringList arguments{side == Side::Ours ? home : databaseOf(home), benchCategory.toString(),
                          QString::number(jobs)};
    for (const Feed &feed : feeds)
        arguments << feed.channel << feed.url;
    return arguments;
}

// The server makes a feed when it is first asked for it.
void Cases::warmUp(const Feeds &feeds) {
    std::vector<std::string> urls;
    for (const Feed &feed : feeds)
        urls.push_back(feed.url.toStdString());
    floorFetchAll(urls, jobCount, [](std::size_t, const std::string &) {});
}

void Cases::check(const Sample &sample, const Expected &expected, Side side) {
    if (sample.items == expected.items && sample.stored == expected.stored)
        return;
    throw MeasurementError(QStringLiteral("%1 had %2 items and stored %3, not %4 and %5")
                               .arg(programOf(side))
                               .arg(sample.items)
                               .arg(sample.stored)
                               .arg(expected.items)
                               .arg(expected.stored));
}

} // namespace tidebrook
