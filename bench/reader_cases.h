#pragma once

#include "bench/report.h"
#include "bench/runner.h"

#include <QSet>
#include <QString>

#include <array>
#include <optional>
#include <vector>

namespace tidebrook {

struct Options;

/// What the reader's start costs until the first list is painted, beside that of a bare window with
/// as many rows.
class ReaderCases {
public:
    ReaderCases(const Options &options, const QString &folder, const Runner &runner,
                Report &report);

    /// Throws std::runtime_error when a measurement fails.
    void run();

private:
    enum class Cache { Warm, Cold };

    /// One start, up to the first paint.
    struct Start {
        double wall = 0;         // seconds
        double cpu = 0;          // seconds
        double proportional = 0; // KiB
        double read = 0;         // KiB, from the disk
    };
    using BothSides = std::array<std::vector<Start>, 2>;

    void measureMemory();
    void measureStarts(Cache cache);
    void reportStarts(Cache cache, const BothSides &both);
    void countInstructions();
    Start start(const QString &program) const;

    const Options &options_;
    const QString folder_;
    const Runner &runner_;
    Report &report_;
    QSet<QString> files_; // that either program has mapped
};

} // namespace tidebrook
