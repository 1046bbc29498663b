#include "bench/report.h"

#include <QLocale>

#include <cstdio>

namespace tidebrook {

namespace {

QString number(double value, int decimals) {
    return QLocale(QLocale::English).toString(value, 'f', decimals);
}

void print(const QString &line) {
    std::printf("%s\n", line.toLocal8Bit().constData());
    std::fflush(stdout);
}

void printColumns(const QString &what, const QString &ours, const QString &theirs,
                  const QString &ratio, const QString &verdict) {
    print(QStringLiteral("  %1 %2 %3 %4  %5")
              .arg(what, -36)
              .arg(ours, 15)
              .arg(theirs, 15)
              .arg(ratio, 7)
              .arg(verdict));
}

} // namespace

void Report::section(const QString &title, const QString &ours, const QString &theirs) {
    print(u'\n' + title);
    printColumns({}, ours, theirs, QStringLiteral("ratio"), QStringLiteral("target"));
}

void Report::row(const Measured &measured) {
    const double ratio = measured.ours / measured.theirs;
    QString verdict = QStringLiteral("-");
    if (measured.target) {
        const bool isMet = ratio <= *measured.target;
        ++(isMet ? metCount_ : missedCount_);
        verdict = QStringLiteral("<= %1  %2")
                      .arg(*measured.target, 0, 'f', 2)
                      .arg(isMet ? QStringLiteral("met") : QStringLiteral("NOT MET"));
    }
    printColumns(measured.what, number(measured.ours, measured.decimals),
                 number(measured.theirs, measured.decimals), number(ratio, 3), verdict);
}

void Report::note(const QString &text) { print(text); }

} // namespace tidebrook
