#pragma once

#include "bench/report.h"
#include "bench/runner.h"

#include <QString>

namespace tidebrook {

struct Options;

inline constexpr int importedChannels = 223; // as many as a list may offer
inline constexpr int exportedChannels = 600; // in the last category

/// What it costs to bring channels in and out, and how soon the reader answers meanwhile.
class SharingCases {
public:
    SharingCases(const Options &options, const QString &folder, const Runner &runner,
                 Report &report);

    /// Throws std::runtime_error when a measurement fails.
    void run();

private:
    void makeDocuments() const;
    /// The user does this, each time on a copy of the store.
    QList<QByteArray> share(const QString &what) const;

    const Options &options_;
    const QString folder_;
    const QString store_;
    const QString documents_;
    const Runner &runner_;
    Report &report_;
};

} // namespace tidebrook
