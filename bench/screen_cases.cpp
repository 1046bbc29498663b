// What the screens compute, how soon they answer, how they hold out, and how channels are brought
// in and out.

#include "bench/bench.h"
#include "bench/store_maker.h"
#include "test_device/home.h"

namespace tidebrook {

using namespace Qt::StringLiterals;

namespace {

/// What a user does who has documents, the list of channels alone.
struct Use {
    QString measurement;
    QString store; ///< it works on copies of it
    int runs;
    bool isServed = false; ///< the service runs meanwhile
};

struct Step {
    std::string name;
    std::string figure;
    std::optional<double> target = 1;
};

QByteArray importedList() {
    QString list = u"<opml version=\"2.0\"><body>"_s;
    for (int i = 0; i < importedChannels; ++i)
        list += u"<outline type=\"rss\" text=\"Notes from valley %1\" "
                "xmlUrl=\"http://notes.example.org/%1/rss.xml\"/>\n"_s.arg(i);
    return (list + u"</body></opml>\n").toUtf8();
}

Steps drive(const Use &use) {
    Steps costs;
    for (int run = 0; run < use.runs; ++run) {
        const StoreCopy copy(use.store);
        const Home home({u"list.opml"_s}, importedList());
        std::optional<Service> service;
        if (use.isServed)
            service.emplace(copy.home);
        readSteps(costs, outputOf(u"bench_screens"_s, {copy.home, use.measurement}));
    }
    return costs;
}

/// Reports these steps beside what is allowed of each, in ms.
void limit(Bench &bench, const char *title, double allowed, const Use &use,
           const std::vector<Step> &steps) {
    bench.report.section(title, "allowed");
    const Steps costs = drive(use);
    for (const auto &[name, figure, target] : steps) {
        std::string label = name;
        label.append(", ").append(figure);
        bench.report.limit(label, costs.at(name), figure, allowed, target);
    }
}

void measureOpenings(Bench &bench, const QString &store) {
    bench.report.section("A channel and an article opened and left 1,000 times", "after 100",
                         "at the end");
    const Steps costs = drive({u"openings"_s, store, 1, true});
    bench.report.compare({}, costs.at("end"), costs.at("warm"),
                         {{"Rss", "Rss/KiB", 1, 0, 1.02},
                          {"threads", "threads", 1, 0, 1.0},
                          {"descriptors", "descriptors", 1, 0, 1.0}});
}

} // namespace

void measureScreens(Bench &bench) {
    const QString categories = bench.folder.filePath(u"categories"_s);
    makeStore(categories, {.filledChannels = 600, .articlesPerChannel = 2, .categories = 600});
    limit(bench, "The list of 600 categories: CPU from each step to the picture; a frame", 16,
          {u"categories"_s, categories, bench.runs},
          {{"refreshed", "thread"}, {"wheel", "thread"}, {"PageDown", "thread"}});

    FeedServer server;
    const QString store = bench.folder.filePath(u"read"_s);
    makeStore(store, {.filledChannels = readCategories * channelsToRead,
                      .articlesPerChannel = articlesToRead,
                      .categories = readCategories,
                      .feeds = serveFeeds(server, channelsToUpdate, articlesToRead)});
    std::vector<Step> steps;
    for (const char *step : {"category", "channel", "article", "next-channel"})
        steps.insert(steps.end(), {{step, "process"}, {step, "thread", {}}});
    limit(bench, "What a key opens in a store of 104,500 articles: CPU of 20 of each a run", 50,
          {u"steps"_s, store, bench.runs, true}, steps);
    measureOpenings(bench, store);
    qputenv("TIDEBROOK_PAUSES", "20"); // for the programs that are run
    limit(bench,
          "Update All over 20 channels: from a key or tap, which ends a wait, to the picture", 50,
          {u"taps"_s, store, 1, true}, {{"taps", "wall"}, {"taps", "thread", {}}});
    limit(bench, "The same, from turns of the wheel, which end no wait", 50,
          {u"wheel"_s, store, 1, true}, {{"wheel", "wall"}, {"wheel", "thread", {}}});
    qunsetenv("TIDEBROOK_PAUSES");
}

void measureSharing(Bench &bench) {
    QList<RefreshJob> exported;
    for (int i = 0; i < exportedChannels; ++i)
        exported.append(
            {u"http://feeds.example.org/"_s, u"Letters from harbour %1"_s.arg(i), u"Bench"_s});
    const QString store = bench.folder.filePath(u"sharing"_s);
    makeStore(store, {.filledChannels = 12 * channelsToShare,
                      .articlesPerChannel = 10,
                      .categories = 12,
                      .feeds = exported});
    limit(bench, "223 channels imported by the wizard, until all are listed", 1000,
          {u"import"_s, store, bench.runs},
          {{"from-file", "process"}, {"from-Finish", "process"}, {"from-Finish", "wall", {}}});
    limit(bench, "The same, with Finish and, from then on, the wheel, to the picture", 50,
          {u"watch"_s, store, bench.runs}, {{"answer", "wall"}});
    limit(bench, "A category of 600 channels exported, until the file is there", 200,
          {u"export"_s, store, bench.runs}, {{"export", "wall"}, {"export", "process"}});
}

} // namespace tidebrook
