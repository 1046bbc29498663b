#pragma once

#include "bench/report.h"
#include "bench/runner.h"

#include <QString>

namespace tidebrook {

struct Options;

// What the store holds that is read.
inline constexpr int readCategories = 50;
inline constexpr int channelsToRead = 19;  // in each of those
inline constexpr int articlesToRead = 110; // in each channel
inline constexpr int channelsToUpdate = 20;

/// What the screens compute, step by step, how soon they answer, and how they hold out.
class ScreenCases {
public:
    ScreenCases(const Options &options, const QString &folder, const Runner &runner,
                Report &report);

    /// Throws std::runtime_error when a measurement fails.
    void run();

private:
    void measureCategories();
    void measureSteps();
    void measureOpenings();
    void measureUpdates();

    /// Has the user do this on a copy of the store, of which nothing was read or updated yet.
    QByteArray read(const QString &what) const;

    const Options &options_;
    const QString folder_;
    const QString readStore_;
    const Runner &runner_;
    Report &report_;
};

} // namespace tidebrook
