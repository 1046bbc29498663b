#include "bench/screen_cases.h"

#include "bench/cases.h"
#include "bench/step_report.h"
#include "bench/store_maker.h"

#include <QDir>

namespace tidebrook {

namespace {

constexpr int categoryCount = 600;
constexpr int articlesPerChannel = 2;
constexpr double frame = 16;  // ms
constexpr double answer = 50; // ms
constexpr double growthAllowed = 1.02;

} // namespace

ScreenCases::ScreenCases(const Options &options, const QString &folder, const Runner &runner,
                         Report &report)
    : options_(options), folder_(folder), readStore_(QDir(folder).filePath(QStringLiteral("read"))),
      runner_(runner), report_(report) {}

void ScreenCases::run() {
    measureCategories();
    const ServerProcess server(0);
    StorePlan plan{.filledChannels = readCategories * channelsToRead,
                   .articlesPerChannel = articlesToRead,
                   .categories = readCategories};
    for (int i = 0; i < channelsToUpdate; ++i)
        plan.automaticFeeds.append(
            {QStringLiteral("Updated feed %1").arg(i), server.feed(articlesToRead, i + 1)});
    makeStore(readStore_, plan);
    measureSteps();
    measureOpenings();
    measureUpdates();
}

void ScreenCases::measureCategories() {
    report_.section(QStringLiteral("The list of 600 categories: CPU of the thread that shows it, "
                                   "from each step to the picture"),
                    QStringLiteral("tidebrook"), QStringLiteral("a frame"));
    const QString home = QDir(folder_).filePath(QStringLiteral("screens"));
    makeStore(home, {.filledChannels = categoryCount,
                     .articlesPerChannel = articlesPerChannel,
                     .categories = categoryCount});
    QList<QByteArray> outputs(options_.runs);
    for (QByteArray &output : outputs)
        runner_.runWhole(QStringLiteral("bench_screens"), {home, QString::number(categoryCount)},
                         output);
    for (const char *step : {"refreshed", "wheel", "PageDown"})
        reportStep(report_, outputs, step, "thread", frame);
}

void ScreenCases::measureSteps() {
    report_.section(QStringLiteral("What a key opens in a store of 104,500 articles: CPU of the "
                                   "process and of the thread that shows it, 20 of each a run"),
                    QStringLiteral("tidebrook"), QStringLiteral("allowed"));
    QList<QByteArray> outputs(options_.runs);
    for (QByteArray &output : outputs)
        output = read(QStringLiteral("steps"));
    for (const char *step : {"category", "channel", "article", "next-channel"}) {
        reportStep(report_, outputs, step, "process", answer);
        reportStep(report_, outputs, step, "thread", answer, std::nullopt);
    }
}

void ScreenCases::measureOpenings() {
    report_.section(QStringLiteral("A channel and an article opened and left 1,000 times"),
                    QStringLiteral("at the end"), QStringLiteral("after 100"));
    const QByteArray output = read(QStringLiteral("openings"));
    const auto row = [&](const char *figure, double target) {
        report_.row({QLatin1String(figure), figureOf(lineOf(output, "end"), figure),
                     figureOf(lineOf(output, "warm"), figure), 0, target});
    };
    row("Rss/KiB", growthAllowed);
    row("threads", 1);
    row("descriptors", 1);
}

void ScreenCases::measureUpdates() {
    report_.section(
        QStringLiteral("Update All over 20 channels: wall time from keys and taps, which "
                       "end the waits, or the wheel, to the picture"),
        QStringLiteral("tidebrook"), QStringLiteral("allowed"));
    qputenv("TIDEBROOK_PAUSES", "20"); // for the programs that are run
    for (const char *way : {"taps", "wheel"}) {
        const QByteArray output = read(QLatin1String(way));
        reportStep(report_, {output}, way, "wall", answer);
        reportStep(report_, {output}, way, "thread", answer, std::nullopt);
        report_.note(QStringLiteral("  %1 of these events, one every 100 ms")
                         .arg(figureOf(lineOf(output, way), "count")));
    }
}

QByteArray ScreenCases::read(const QString &what) const {
    QByteArray output;
    onCopy(readStore_, [&](const QString &home) {
        BackgroundProcess service(Runner::pathOf(QStringLiteral("feedlarkd")),
                                  {QStringLiteral("--foreground"), QStringLiteral("--home"), home},
                                  QProcess::StandardError);
        service.awaitLine("serves");
        runner_.runWhole(QStringLiteral("bench_reading"), {home, what}, output);
    });
    return output;
}

} // namespace tidebrook
