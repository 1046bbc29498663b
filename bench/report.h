#pragma once

#include <QString>

#include <optional>

namespace tidebrook {

/// One line of the table: what was measured on one side and on the other, and the highest ratio
/// that is wanted, if one is.
struct Measured {
    QString what;
    double ours = 0;
    double theirs = 0;
    int decimals = 0;
    std::optional<double> target = {};
};

/// The table that the benchmarks print, line by line as they come to know it.
class Report {
public:
    /// Begins a part of the table, with the names of its two sides.
    void section(const QString &title, const QString &ours, const QString &theirs);
    void row(const Measured &measured);
    void note(const QString &text);

    int metCount() const { return metCount_; }
    int missedCount() const { return missedCount_; }

private:
    int metCount_ = 0;
    int missedCount_ = 0;
};

} // namespace tidebrook
