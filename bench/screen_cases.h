#pragma once

#include "bench/report.h"
#include "bench/runner.h"

#include <QString>

namespace tidebrook {

struct Options;

/// What the screens compute on the thread that shows them, step by step, beside what may pass
/// between two pictures.
class ScreenCases {
public:
    ScreenCases(const Options &options, const QString &folder, const Runner &runner,
                Report &report);

    /// Throws std::runtime_error when a measurement fails.
    void run();

private:
    const Options &options_;
    const QString folder_;
    const Runner &runner_;
    Report &report_;
};

} // namespace tidebrook
