#pragma once

#include "bench/report.h"

#include <QDir>
#include <QProcess>

namespace tidebrook {

// All throws std::runtime_error when it fails. Programs that are run end with this one.

void require(bool isSo, const QString &what);

/// Runs one of our programs, which must succeed; with others before it, as "valgrind". What it
/// printed.
std::string outputOf(const QString &program, const QStringList &arguments,
                     const QStringList &before = {});

/// One of our programs that runs beside the measurements, and ends with this object.
class BackgroundProcess {
public:
    /// Returns when it has printed a line that holds `greeting`.
    BackgroundProcess(const QString &program, const QStringList &arguments,
                      const QByteArray &greeting);
    ~BackgroundProcess();

    /// Waits for the next line that holds `text`, half a minute at most.
    void awaitLine(const QByteArray &text);

    pid_t id() const { return static_cast<pid_t>(process_.processId()); }

private:
    QProcess process_;
};

/// The service of a device, which hears requests once this is there.
struct Service : BackgroundProcess {
    explicit Service(const QString &home);
};

/// What is measured of a run of a program.
enum class Extent {
    Whole,  ///< the process
    Region, ///< what the program itself measures
};

using Side = std::function<Figures()>;

/// What the cases share: what the user asks for, a folder that is theirs, and the report.
struct Bench {
    const int runs;
    const bool areCounted;   ///< instructions, too
    const QStringList named; ///< the cases; all if there is none
    const QDir folder;
    const QDir profiles; ///< where callgrind's files stay
    Report report = {};
    bool isCounting = false; ///< in this turn

    /// Measures all sides in turns, so often as the user asks; counts their instructions in one
    /// turn more if the user asks for that.
    std::vector<Runs> takeTurns(const std::vector<Side> &sides);

    /// What a run of one of our programs cost: "wall" and "cpu", or what it measured of its "work".
    /// While instructions are counted, "instructions", and of the others what is no cost.
    Figures measure(const QString &program, const QStringList &arguments, Extent extent) const;
};

// The cases.
void refreshOneFeed(Bench &bench);
void refreshBesideOthers(Bench &bench);
void refreshManyFeeds(Bench &bench);
void listChannels(Bench &bench);
void measureService(Bench &bench);
void measureReader(Bench &bench);
void measureScreens(Bench &bench);
void measureSharing(Bench &bench);
void measureToday(Bench &bench);
void measurePublisher(Bench &bench);

} // namespace tidebrook
