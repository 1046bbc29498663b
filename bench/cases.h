#pragma once

#include "bench/report.h"
#include "bench/runner.h"
#include "bench/series.h"
#include "bench/store_maker.h"

#include <QString>
#include <QStringList>

#include <array>

namespace tidebrook {

/// What the user asks for.
struct Options {
    bool counts = false;
    bool idle = false; ///< the service is watched while it does nothing, which takes minutes
    int runs = 5;
    QString profiles;  ///< where callgrind's files stay; nowhere if it is empty
    QStringList cases; ///< all if there is none
};

/// The cases that are measured, each a part of the report. They work in a folder that is theirs.
class Cases {
public:
    Cases(const Options &options, const QString &folder);

    static const QStringList &names();

    /// Throws std::runtime_error when a measurement fails.
    void run();

private:
    /// The two programs that do the same work.
    enum class Side { Ours, Floor };
    static constexpr std::array sides{Side::Ours, Side::Floor};

    /// What a refresh must come to, lest something else was measured.
    struct Expected {
        int items = 0;
        int stored = 0;
    };

    struct Refreshes {
        Series first;
        Series unchanged;
    };
    using BothSides = std::array<Refreshes, sides.size()>;

    void refreshOneFeed();
    void refreshOneFeed(int items);
    void countOneFeed(BothSides &both, const QString &store, const Feeds &feeds, int items);
    void reportOneFeed(const BothSides &both, Series Refreshes::*series, const QString &name,
                       int items);

    void refreshBesideOthers();
    QString heldStore(int articles) const;
    void refreshBeside(Series &series, int articles, const Feeds &feeds);
    void countBeside(Series &series, int articles, const Feeds &feeds);
    void reportBeside(const Series &series, const Series &least, int articles);

    void refreshManyFeeds();

    void listChannels();
    Sample listChannels(const QString &home, int expectedLines) const;

    Sample refresh(Side side, const QString &home, const Feeds &feeds, int jobs,
                   const Expected &expected) const;
    double countRefresh(Side side, const QString &home, const Feeds &feeds, const QString &profile,
                        const Expected &expected) const;

    QString path(const QString &name) const;

    static QString programOf(Side side);
    static QString labelOf(Side side);
    static QStringList argumentsOf(Side side, const QString &home, const Feeds &feeds, int jobs);
    static void warmUp(const Feeds &feeds);
    static void check(const Sample &sample, const Expected &expected, Side side);

    const Options options_;
    const QString folder_;
    const Runner runner_;
    Report report_;
};

} // namespace tidebrook
