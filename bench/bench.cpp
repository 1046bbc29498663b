#include "bench/bench.h"

#include <QCoreApplication>

#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace tidebrook {

using namespace Qt::StringLiterals;

namespace {

void start(QProcess &process, const QStringList &before, const QString &program,
           const QStringList &arguments) {
    process.setChildProcessModifier([parent = getpid()] {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent)
            _exit(1);
    });
    const QStringList call =
        before + QStringList(QDir(QCoreApplication::applicationDirPath()).filePath(program)) +
        arguments;
    process.start(call.first(), call.sliced(1));
}

/// The CPU of all programs that were run and have ended.
double childrenCpu() {
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
}

} // namespace

void require(bool isSo, const QString &what) {
    if (!isSo)
        throw std::runtime_error("not so: " + what.toStdString());
}

std::string outputOf(const QString &program, const QStringList &arguments,
                     const QStringList &before) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    start(process, before, program, arguments);
    require(process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit &&
                process.exitCode() == 0,
            program + u" succeeds: " + process.errorString());
    return process.readAllStandardOutput().toStdString();
}

BackgroundProcess::BackgroundProcess(const QString &program, const QStringList &arguments,
                                     const QByteArray &greeting) {
    process_.setProcessChannelMode(QProcess::MergedChannels);
    start(process_, {}, program, arguments);
    awaitLine(greeting);
}

BackgroundProcess::~BackgroundProcess() {
    process_.terminate();
    if (!process_.waitForFinished())
        process_.kill();
    process_.waitForFinished(-1);
}

void BackgroundProcess::awaitLine(const QByteArray &text) {
    QByteArray line;
    while (!line.contains(text)) {
        require(process_.canReadLine() || process_.waitForReadyRead(),
                process_.program() + u" says " + QString::fromUtf8(text));
        if (process_.canReadLine())
            line = process_.readLine();
    }
}

Service::Service(const QString &home)
    : BackgroundProcess(u"feedlarkd"_s, {u"--foreground"_s, u"--home"_s, home}, "serves") {}

std::vector<Runs> Bench::takeTurns(const std::vector<Side> &sides) {
    std::vector<Runs> all(sides.size());
    for (int run = 0; run < (areCounted ? runs + 1 : runs); ++run) {
        isCounting = run == runs;
        for (std::size_t i = 0; i < sides.size(); ++i)
            all[i].push_back(sides[i]());
    }
    isCounting = false;
    return all;
}

Figures Bench::measure(const QString &program, const QStringList &arguments, Extent extent) const {
    QStringList before;
    if (extent == Extent::Region) // the linker's work belongs to the program's start
        before = {u"env"_s, u"LD_BIND_NOW=1"_s};
    if (isCounting)
        before += {u"valgrind"_s, u"--tool=callgrind"_s, u"--log-fd=1"_s,
                   u"--callgrind-out-file="_s + profiles.filePath(program + u"-%p.callgrind"),
                   u"--instr-atstart="_s + (extent == Extent::Whole ? u"yes"_s : u"no"_s)};
    const double begin = secondsOf(CLOCK_MONOTONIC);
    const double cpuBefore = childrenCpu();
    const std::string output = outputOf(program, arguments, before);
    const double end = secondsOf(CLOCK_MONOTONIC);
    Steps steps;
    readSteps(steps, output);
    Figures figures = steps["work"].empty() ? Figures() : steps["work"].front();
    if (figures.contains("at")) // the moment at which the whole was measured
        figures["wall"] = figures["at"] - begin;
    figures.insert({{"wall", end - begin}, {"cpu", childrenCpu() - cpuBefore}});
    if (isCounting) {
        const std::string mark = "Collected : ";
        for (const char *cost : {"wall", "cpu", "peak", "Pss"})
            figures.erase(cost);
        figures["instructions"] = std::stod(output.substr(output.find(mark) + mark.size()));
    }
    return figures;
}

} // namespace tidebrook
