// The Today item as a small window: what it holds, what a step from one headline to the next costs,
// and whether it sleeps while it is not to be shown.

#include "bench/bench.h"
#include "bench/store_maker.h"

#include <thread>

namespace tidebrook {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int channelCount = 50;
constexpr int stepsOfRun = 20;
constexpr auto step = 300ms;      // 5 percent of the usual one
constexpr double stepAllowed = 2; // ms
constexpr int changeCount = 20;

/// The item, which is at rest on a headline once this is there.
struct Item : BackgroundProcess {
    Item() : BackgroundProcess(u"bench_today"_s, {u"--window"_s}, "shown") { awaitIdle(id()); }
};

double cpuOf(pid_t process) {
    clockid_t clock{};
    require(clock_getcpuclockid(process, &clock) == 0, u"a process can be measured"_s);
    return secondsOf(clock);
}

double pssOf(pid_t process) { return procFigure(std::to_string(process) + "/smaps_rollup", "Pss"); }

Figures measureItem() {
    const Item item;
    Figures figures{{"Pss", pssOf(item.id())}};
    const double cpu = cpuOf(item.id());
    const double sleeps = sleepsOf(item.id());
    std::this_thread::sleep_for(stepsOfRun * step);
    figures["cpu"] = (cpuOf(item.id()) - cpu) / stepsOfRun;
    figures["wake-ups"] = sleepsOf(item.id()) - sleeps;
    require(figures["wake-ups"] >= stepsOfRun,
            u"the Today item shows one headline after another"_s);
    return figures;
}

Figures measureWindow() {
    const BackgroundProcess window(u"bare_window"_s, {u"1"_s, u"stay"_s}, "work");
    awaitIdle(window.id());
    return {{"Pss", pssOf(window.id())}};
}

void measureShown(Bench &bench) {
    bench.report.section("The Today item's window over 1,000 unread articles", "bare window");
    {
        const Item item;
        const BackgroundProcess window(u"bare_window"_s, {u"1"_s, u"stay"_s}, "work");
        const auto both = memoryOf(item.id(), window.id());
        bench.report.compare({}, {both[0]}, {both[1]},
                             {{"alone", "as if alone, KiB"}, {"Anonymous", "anonymous, KiB"}});
    }
    const std::vector<Runs> both = bench.takeTurns({measureItem, measureWindow});
    bench.report.compare({}, both[0], both[1], {{"Pss", "Pss, KiB", 1, 0, 1.2}});
    bench.report.section("The same, 20 headlines a run, 300 ms each", "allowed");
    bench.report.limit("CPU of a headline", both[0], "cpu", stepAllowed);
    bench.report.section("How often its threads wake up for that", "headlines");
    bench.report.compare({}, both[0], {{{"wake-ups", stepsOfRun}}}, {{"wake-ups", "wake-ups"}});
}

/// Others change what the item shows, but not whether it is shown.
void changeDevice() {
    for (int i = 0; i < changeCount; ++i) {
        outputOf(u"tidebrookctl"_s, {u"setting"_s, u"UpdateInterval"_s, QString::number(i % 6)});
        outputOf(u"tidebrookctl"_s,
                 {u"mark"_s, u"Voices of district 0001"_s, i % 2 == 0 ? u"read"_s : u"unread"_s});
    }
}

void measureHidden(Bench &bench) {
    bench.report.section("The Today item put away, while tidebrookctl makes 40 changes", "allowed");
    const Item item;
    const auto enable = [](const QString &value) {
        outputOf(u"tidebrookctl"_s, {u"setting"_s, u"--today"_s, u"Enabled"_s, value});
    };
    enable(u"0"_s);
    awaitIdle(item.id());
    const double before = sleepsOf(item.id());
    changeDevice();
    std::this_thread::sleep_for(2s);
    const double after = sleepsOf(item.id());
    enable(u"1"_s);
    std::this_thread::sleep_for(2s);
    require(sleepsOf(item.id()) > after, u"the Today item comes back"_s);
    bench.report.compare({}, {{{"wake-ups", after - before}}}, {{{"wake-ups", 0}}},
                         {{"wake-ups", "wake-ups", 1, 0, 1}});
}

} // namespace

void measureToday(Bench &bench) {
    const QString home = bench.folder.filePath(u"today"_s);
    makeStore(home, {.filledChannels = channelCount, .articlesPerChannel = 20, .categories = 10});
    // For the programs that are run.
    qputenv("TIDEBROOK_HOME", home.toLocal8Bit());
    qputenv("TIDEBROOK_PAUSES", "5");
    measureShown(bench);
    measureHidden(bench);
    qunsetenv("TIDEBROOK_PAUSES");
    qunsetenv("TIDEBROOK_HOME");
}

} // namespace tidebrook
