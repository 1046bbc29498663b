#include "bench/step_report.h"

#include "bench/runner.h"
#include "bench/series.h"

#include <algorithm>
#include <vector>

namespace tidebrook {

namespace {

constexpr double milliseconds = 1e3;

} // namespace

QByteArray lineOf(const QByteArray &output, const QByteArray &name) {
    for (const QByteArray &line : output.split('\n')) {
        if (line.split(' ').first() == name)
            return line;
    }
    throw MeasurementError(QStringLiteral("nothing was said of %1").arg(QLatin1String(name)));
}

void reportStep(Report &report, const QList<QByteArray> &outputs, const QByteArray &step,
                const QByteArray &figure, double allowed, std::optional<double> target) {
    std::vector<double> medians;
    double worst = 0;
    for (const QByteArray &output : outputs) {
        const QByteArray line = lineOf(output, step);
        medians.push_back(figureOf(line, figure + "-median"));
        worst = std::max(worst, figureOf(line, figure + "-worst"));
    }
    const QString text = QLatin1String(step + ", " + figure);
    report.row({text + u": median, ms", medianOf(medians) * milliseconds, allowed, 2, target});
    report.row({text + u": worst, ms", worst * milliseconds, allowed, 2, target});
}

} // namespace tidebrook
