#pragma once

#include "bench/background_process.h"

#include <QString>
#include <QStringList>

#include <stdexcept>

namespace tidebrook {

/// A measurement that could not be made.
class MeasurementError : public std::runtime_error {
public:
    explicit MeasurementError(const QString &message) : std::runtime_error(message.toStdString()) {}
};

/// Throws MeasurementError when the user has asked for the end.
void throwIfInterrupted();

/// What one run of a program cost.
struct Sample {
    double cpu = 0;  // seconds
    double wall = 0; // seconds
    double peak = 0; // MiB; 0 where it is not known
    int items = 0;
    int stored = 0;
};

/// A figure of a line of them, "NAME=FIGURE NAME=FIGURE...", that a program printed. Throws
/// MeasurementError when it is not there.
double figureOf(const QByteArray &line, const QByteArray &name);

/// Runs the programs that lie beside this one. Throws MeasurementError when a program fails, and
/// when the user has asked for the end meanwhile.
class Runner {
public:
    /// Callgrind's files go into `profiles` and stay there; if it is empty, into `folder`.
    Runner(const QString &folder, const QString &profiles);

    /// Runs a worker, which measures its own region.
    Sample run(const QString &program, const QStringList &arguments) const;
    /// The instructions of a worker's region; `sample` is given what it did.
    double count(const QString &program, const QStringList &arguments, const QString &profile,
                 Sample &sample) const;

    /// Runs a program as a whole; `output` is given what it printed.
    Sample runWhole(const QString &program, const QStringList &arguments, QByteArray &output) const;
    double countWhole(const QString &program, const QStringList &arguments,
                      const QString &profile) const;

    static QString pathOf(const QString &program);

private:
    double countInstructions(const QStringList &options, const QString &program,
                             const QStringList &arguments, const QString &profile,
                             QByteArray &output) const;

    QString profiles_;
};

/// A feed server of our own on the loopback device, which ends with this object.
class ServerProcess {
public:
    explicit ServerProcess(int delay);

    /// The address of a generated feed.
    QString feed(int items, int seed) const;

private:
    BackgroundProcess process_;
    QString address_;
};

} // namespace tidebrook
