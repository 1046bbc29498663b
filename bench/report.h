#pragma once

#include "bench/figures.h"

#include <optional>

namespace tidebrook {

/// How a figure is printed: its text and unit, and the highest ratio that is wanted, if one is.
struct Column {
    std::string figure;
    std::string text;
    double unit = 1;
    int decimals = 0;
    std::optional<double> target = {};
};

/// The table that the benchmarks print, line by line as they come to know it.
struct Report {
    int metTargets = 0;
    int missedTargets = 0;

    /// Begins a part of the table, with the names of its two sides.
    void section(const char *title, const char *theirs, const char *ours = "tidebrook");

    /// A line for each figure that was measured: the medians of both sides.
    void compare(const std::string &name, const Runs &ours, const Runs &theirs,
                 const std::vector<Column> &columns);

    /// The median and the worst of a time beside what is allowed, in milliseconds.
    void limit(const std::string &name, const Runs &runs, const std::string &figure, double allowed,
               std::optional<double> target = 1);

private:
    void row(const Column &column, double ours, double theirs);
};

} // namespace tidebrook
