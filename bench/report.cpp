#include "bench/report.h"

#include <QLocale>

#include <algorithm>
#include <cstdio>

namespace tidebrook {

namespace {

std::vector<double> sorted(const Runs &runs, const std::string &figure) {
    std::vector<double> values;
    for (const Figures &figures : runs) {
        if (figures.contains(figure))
            values.push_back(figures.at(figure));
    }
    std::ranges::sort(values);
    return values;
}

double medianOf(const std::vector<double> &values) {
    return (values.at(values.size() / 2) + values.at((values.size() - 1) / 2)) / 2;
}

std::string text(double value, int decimals) {
    return QLocale(QLocale::English).toString(value, 'f', decimals).toStdString();
}

void print(const std::string &what, const std::string &ours, const std::string &theirs,
           const std::string &ratio, const std::string &verdict) {
    std::printf("  %-36s %15s %15s %7s  %s\n", what.c_str(), ours.c_str(), theirs.c_str(),
                ratio.c_str(), verdict.c_str());
    std::fflush(stdout);
}

} // namespace

void Report::section(const char *title, const char *theirs, const char *ours) {
    std::printf("\n%s\n", title);
    print({}, ours, theirs, "ratio", "target");
}

void Report::compare(const std::string &name, const Runs &ours, const Runs &theirs,
                     const std::vector<Column> &columns) {
    for (Column column : columns) {
        const std::vector<double> values = sorted(ours, column.figure);
        column.text = name + column.text;
        if (!values.empty())
            row(column, medianOf(values), medianOf(sorted(theirs, column.figure)));
    }
}

void Report::limit(const std::string &name, const Runs &runs, const std::string &figure,
                   double allowed, std::optional<double> target) {
    const std::vector<double> values = sorted(runs, figure);
    row({figure, name + ": median, ms", 1e3, 2, target}, medianOf(values), allowed / 1e3);
    row({figure, name + ": worst, ms", 1e3, 2, target}, values.back(), allowed / 1e3);
}

void Report::row(const Column &column, double ours, double theirs) {
    std::string verdict = "-";
    if (column.target) {
        const bool isMet = ours <= theirs * *column.target;
        ++(isMet ? metTargets : missedTargets);
        verdict = "<= " + text(*column.target, 2) + (isMet ? "  met" : "  NOT MET");
    }
    print(column.text, text(ours * column.unit, column.decimals),
          text(theirs * column.unit, column.decimals), theirs > 0 ? text(ours / theirs, 3) : "-",
          verdict);
}

} // namespace tidebrook
