#include "bench/screen_cases.h"

#include "bench/cases.h"
#include "bench/series.h"
#include "bench/store_maker.h"

#include <QDir>
#include <QHash>

#include <array>

namespace tidebrook {

namespace {

constexpr int categoryCount = 600;
constexpr int articlesPerChannel = 2;
constexpr double frame = 16; // ms
constexpr double milliseconds = 1e3;

struct Kind {
    const char *name; ///< as the program prints it
    const char *text;
};
constexpr std::array kinds{Kind{"category-fill", "refreshed"},
                           Kind{"category-wheel", "the wheel, notch by notch"},
                           Kind{"category-page", "PageDown, key by key"}};

/// The runs of one kind of step.
struct Times {
    std::vector<double> medians; // seconds
    std::vector<double> worst;
};
using AllTimes = QHash<QByteArray, Times>;

void read(const QByteArray &output, AllTimes &all) {
    for (const Kind &kind : kinds) {
        bool isThere = false;
        for (const QByteArray &line : output.split('\n')) {
            if (line.split(' ').first() != kind.name)
                continue;
            isThere = true;
            all[kind.name].medians.push_back(figureOf(line, "median"));
            all[kind.name].worst.push_back(figureOf(line, "worst"));
        }
        if (!isThere)
            throw MeasurementError(
                QStringLiteral("nothing was said of %1").arg(QLatin1String(kind.name)));
    }
}

} // namespace

ScreenCases::ScreenCases(const Options &options, const QString &folder, const Runner &runner,
                         Report &report)
    : options_(options), folder_(folder), runner_(runner), report_(report) {}

void ScreenCases::run() {
    report_.section(QStringLiteral("The list of 600 categories: CPU of the thread that shows it, "
                                   "from each step to the picture"),
                    QStringLiteral("tidebrook"), QStringLiteral("a frame"));
    const QString home = QDir(folder_).filePath(QStringLiteral("screens"));
    makeStore(home, {.filledChannels = categoryCount,
                     .articlesPerChannel = articlesPerChannel,
                     .categories = categoryCount});
    AllTimes all;
    for (int run = 0; run < options_.runs; ++run) {
        QByteArray output;
        runner_.runWhole(QStringLiteral("bench_screens"), {home, QString::number(categoryCount)},
                         output);
        read(output, all);
    }
    for (const Kind &kind : kinds) {
        const QString text = QLatin1String(kind.text);
        const Times &times = all[kind.name];
        report_.row({text + u": median, ms", medianOf(times.medians) * milliseconds, frame, 2, 1});
        report_.row({text + u": worst, ms", medianOf(times.worst) * milliseconds, frame, 2, 1});
    }
}

} // namespace tidebrook
