#include "bench/reader_cases.h"

#include "bench/background_process.h"
#include "bench/cases.h"
#include "bench/page_cache.h"
#include "bench/process_figures.h"
#include "bench/series.h"
#include "bench/store_maker.h"

#include <QDir>

#include <algorithm>
#include <chrono>

namespace tidebrook {

namespace {

constexpr int categoryCount = 30;
constexpr int channelCount = 300;
constexpr int articlesPerChannel = 20;
constexpr double startTarget = 1.3;
constexpr double leastColdRead = 1024; // KiB; less has not begun without its libraries

const QStringList programs{QStringLiteral("bench_reader"), QStringLiteral("bare_window")};
const QStringList arguments{QString::number(categoryCount)};

/// A program that stays as it is behind its first paint.
class PaintedProgram {
public:
    explicit PaintedProgram(const QString &program)
        : process_(Runner::pathOf(program), arguments, QProcess::StandardOutput) {
        process_.awaitLine("pss=");
    }

    pid_t pid() const { return process_.pid(); }

private:
    BackgroundProcess process_;
};

} // namespace

ReaderCases::ReaderCases(const Options &options, const QString &folder, const Runner &runner,
                         Report &report)
    : options_(options), folder_(folder), runner_(runner), report_(report) {
    qputenv("QT_QPA_PLATFORM", "offscreen"); // for the programs that are run
}

void ReaderCases::run() {
    report_.section(QStringLiteral("The reader's start until its 30 categories are painted, beside "
                                   "a bare window with 30 rows"),
                    QStringLiteral("tidebrook"), QStringLiteral("bare window"));
    const QString home = QDir(folder_).filePath(QStringLiteral("reader"));
    makeStore(home, {.filledChannels = channelCount,
                     .articlesPerChannel = articlesPerChannel,
                     .categories = categoryCount});
    qputenv("TIDEBROOK_HOME", home.toLocal8Bit());
    // The reader would start it, and measure that, too.
    BackgroundProcess service(Runner::pathOf(QStringLiteral("feedlarkd")),
                              {QStringLiteral("--foreground"), QStringLiteral("--home"), home},
                              QProcess::StandardError);
    service.awaitLine("serves");
    measureMemory();
    measureStarts(Cache::Warm);
    if (options_.counts)
        countInstructions();
    measureStarts(Cache::Cold);
    qunsetenv("TIDEBROOK_HOME");
}

// Also warms both of them up, and tells which files are to be cold later.
void ReaderCases::measureMemory() {
    qputenv("TIDEBROOK_BENCH_STAY", "1");
    const PaintedProgram reader(programs[0]);
    const PaintedProgram window(programs[1]);
    qunsetenv("TIDEBROOK_BENCH_STAY");
    const auto [ofReader, ofWindow] = memoryOf(reader.pid(), window.pid());
    report_.row({QStringLiteral("as if alone, KiB"), ofReader.alone, ofWindow.alone});
    report_.row({QStringLiteral("anonymous, KiB"), ofReader.anonymous, ofWindow.anonymous});
    files_ = filesOf(reader.pid()) | filesOf(window.pid());
}

void ReaderCases::measureStarts(Cache cache) {
    const bool isCold = cache == Cache::Cold;
    BothSides both;
    for (int run = 0; run < options_.runs; ++run) {
        for (std::size_t side = 0; side < both.size(); ++side) {
            if (isCold)
                dropCachedPages(files_);
            both[side].push_back(start(programs[static_cast<qsizetype>(side)]));
        }
    }
    const auto isTooWarm = [](const std::vector<Start> &starts) {
        return medianOf(starts, &Start::read) < leastColdRead;
    };
    if (isCold && std::any_of(both.begin(), both.end(), isTooWarm))
        report_.note(QStringLiteral("  cold: not to be had here, where other programs keep the "
                                    "libraries in memory"));
    else
        reportStarts(cache, both);
}

void ReaderCases::reportStarts(Cache cache, const BothSides &both) {
    constexpr double milliseconds = 1e3;
    const QString name = cache == Cache::Cold ? QStringLiteral("cold") : QStringLiteral("warm");
    const auto row = [&](const QString &what, double Start::*field, double unit, int decimals,
                         std::optional<double> target) {
        report_.row({name + u": " + what, medianOf(both[0], field) * unit,
                     medianOf(both[1], field) * unit, decimals, target});
    };
    row(QStringLiteral("wall time, ms"), &Start::wall, milliseconds, 1, startTarget);
    row(QStringLiteral("CPU, ms"), &Start::cpu, milliseconds, 1, startTarget);
    row(QStringLiteral("Pss, KiB"), &Start::proportional, 1, 0, startTarget);
    if (cache == Cache::Cold)
        row(QStringLiteral("read from the disk, KiB"), &Start::read, 1, 0, std::nullopt);
}

void ReaderCases::countInstructions() {
    const auto count = [this](const QString &program) {
        return runner_.countWhole(program, arguments, program);
    };
    report_.row(
        {QStringLiteral("instructions"), count(programs[0]), count(programs[1]), 0, startTarget});
}

ReaderCases::Start ReaderCases::start(const QString &program) const {
    QByteArray line;
    const double readBefore = childrenRead();
    const std::chrono::duration<double> begin = std::chrono::steady_clock::now().time_since_epoch();
    runner_.runWhole(program, arguments, line);
    return {.wall = figureOf(line, "at") - begin.count(),
            .cpu = figureOf(line, "cpu"),
            .proportional = figureOf(line, "pss"),
            .read = childrenRead() - readBefore};
}

} // namespace tidebrook
