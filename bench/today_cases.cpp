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

Figures measureSteps(const Item &item) {
    const double cpu = cpuOf(item.id());
    const double sleeps = sleepsOf(item.id());
    std::this_thread::sleep_for(stepsOfRun * step);
    Figures figures{{"cpu", (cpuOf(item.id()) - cpu) / stepsOfRun},
                    {"wake-ups", sleepsOf(item.id()) - sleeps}};
    // On a busy machine some may come too late.
    require(2 * figures["wake-ups"] > stepsOfRun, u"the Today item goes through the headlines"_s);
    return figures;
}

void measureShown(Bench &bench) {
    bench.report.section("The Today item's window over 1,000 unread articles", "bare window");
    std::array<Runs, 2> memory; // at the same moments: other programs share it alike
    Runs steps;
    for (int run = 0; run < bench.runs; ++run) {
        const Item item;
        {
            qputenv("BENCH_ROWS", "1");
            qputenv("BENCH_STAY", "1");
            const BackgroundProcess window(u"bare_window"_s, {}, "work");
            qunsetenv("BENCH_STAY");
            qunsetenv("BENCH_ROWS");
            awaitIdle(window.id());
            const auto both = memoryOf(item.id(), window.id());
            for (std::size_t i = 0; i < both.size(); ++i)
                memory[i].push_back(both[i]);
        }
        steps.push_back(measureSteps(item));
    }
    bench.report.compare({}, memory[0], memory[1],
                         {{"alone", "as if alone, KiB", 1, 0, 1.2},
                          {"Pss", "Pss, KiB"},
                          {"Anonymous", "anonymous, KiB"}});
    bench.report.section("The same, 20 headlines a run, 300 ms each", "allowed");
    bench.report.limit("CPU of a headline", steps, "cpu", stepAllowed);
    bench.report.section("How often its threads wake up for that", "headlines");
    bench.report.compare({}, steps, {{{"wake-ups", stepsOfRun}}}, {{"wake-ups", "wake-ups"}});
}

void control(const QStringList &arguments) { outputOf(u"tidebrookctl"_s, arguments); }

/// Others change what the item shows, but not whether it is shown.
void changeDevice() {
    for (int i = 0; i < changeCount; ++i) {
        control({u"setting"_s, u"UpdateInterval"_s, QString::number(1 + i % 6)});
        control({u"mark"_s, u"Voices of district 0001"_s, i % 2 == 0 ? u"read"_s : u"unread"_s});
    }
}

void measureHidden(Bench &bench) {
    bench.report.section("The Today item put away, while tidebrookctl makes 40 changes", "allowed");
    const Item item;
    control({u"setting"_s, u"--today"_s, u"Enabled"_s, u"0"_s});
    awaitIdle(item.id());
    const double before = sleepsOf(item.id());
    changeDevice();
    std::this_thread::sleep_for(2s);
    const double after = sleepsOf(item.id());
    control({u"setting"_s, u"--today"_s, u"Enabled"_s, u"1"_s});
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
