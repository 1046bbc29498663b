// The reader's start until the first list is painted, beside that of a bare window with as many
// rows.

#include "bench/bench.h"
#include "bench/store_maker.h"

namespace tidebrook {

using namespace Qt::StringLiterals;

void measureReader(Bench &bench) {
    constexpr int categoryCount = 30;
    const QStringList programs{u"bench_reader"_s, u"bare_window"_s};
    bench.report.section("The reader's start until its 30 categories are painted, beside 30 rows",
                         "bare window");
    const QString home = bench.folder.filePath(u"reader"_s);
    makeStore(home, {.filledChannels = 300, .articlesPerChannel = 20, .categories = categoryCount});
    qputenv("TIDEBROOK_HOME", home.toLocal8Bit());
    qputenv("BENCH_ROWS", QByteArray::number(categoryCount));
    // The reader would start it, and measure that, too.
    const Service service(home);
    {
        // Both are warm from now on.
        qputenv("BENCH_STAY", "1");
        const BackgroundProcess reader(programs[0], {}, "work");
        const BackgroundProcess window(programs[1], {}, "work");
        qunsetenv("BENCH_STAY");
        const auto both = memoryOf(reader.id(), window.id());
        bench.report.compare({}, {both[0]}, {both[1]},
                             {{"alone", "as if alone, KiB"}, {"Anonymous", "anonymous, KiB"}});
    }
    std::vector<Side> sides;
    for (const QString &program : programs)
        sides.emplace_back([&] { return bench.measure(program, {}, Extent::Whole); });
    const std::vector<Runs> both = bench.takeTurns(sides);
    bench.report.compare({}, both[0], both[1],
                         {{"wall", "wall time, ms", 1e3, 1, 1.3},
                          {"cpu", "CPU, ms", 1e3, 1, 1.3},
                          {"Pss", "Pss, KiB", 1, 0, 1.3},
                          {"instructions", "instructions", 1, 0, 1.3}});
    qunsetenv("BENCH_ROWS");
    qunsetenv("TIDEBROOK_HOME");
}

} // namespace tidebrook
