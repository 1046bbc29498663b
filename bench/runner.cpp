#include "bench/runner.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QProcessEnvironment>

#include <sys/resource.h>

#include <chrono>
#include <csignal>

namespace tidebrook {

namespace {

volatile std::sig_atomic_t isInterrupted = 0;

// What this process has begun is ended in order, and its folder removed.
void holdOffInterrupts() {
    struct sigaction action {};
    action.sa_handler = [](int) { isInterrupted = 1; };
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

// The linker's work belongs to a worker's start, which is not measured.
QProcessEnvironment workerEnvironment() {
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert(QStringLiteral("LD_BIND_NOW"), QStringLiteral("1"));
    return variables;
}

QByteArray outputOf(const QString &program, const QStringList &arguments,
                    const QProcessEnvironment &variables) {
    throwIfInterrupted();
    QProcess process;
    endWithThisThread(process);
    process.setProcessEnvironment(variables);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        throw MeasurementError(QStringLiteral("%1 %2 failed: exit code %3, %4")
                                   .arg(program, arguments.value(0))
                                   .arg(process.exitCode())
                                   .arg(process.errorString()));
    }
    return process.readAllStandardOutput();
}

Sample parseSample(const QByteArray &line) {
    QHash<QByteArray, double> values;
    for (const QByteArray &field : line.trimmed().split(' ')) {
        const qsizetype sign = field.indexOf('=');
        bool isNumber = false;
        const double value = field.mid(sign + 1).toDouble(&isNumber);
        if (sign > 0 && isNumber)
            values.insert(field.first(sign), value);
    }
    if (!values.contains("cpu") || !values.contains("peak") || !values.contains("stored"))
        throw MeasurementError(QStringLiteral("a worker said \"%1\"").arg(QString::fromUtf8(line)));
    return {values["cpu"], values["wall"], values["peak"] / 1024, static_cast<int>(values["items"]),
            static_cast<int>(values["stored"])};
}

double readTotal(const QString &path) {
    constexpr char mark[] = "totals: ";
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        while (!file.atEnd()) {
            const QByteArray line = file.readLine().trimmed();
            if (line.startsWith(mark))
                return line.mid(static_cast<qsizetype>(sizeof mark) - 1).toDouble();
        }
    }
    throw MeasurementError(QStringLiteral("%1 has no total").arg(path));
}

double childrenCpu() {
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

} // namespace

void throwIfInterrupted() {
    if (isInterrupted)
        throw MeasurementError(QStringLiteral("interrupted"));
}

double figureOf(const QByteArray &line, const QByteArray &name) {
    for (const QByteArray &field : line.trimmed().split(' ')) {
        bool isNumber = false;
        const double value = field.mid(name.size() + 1).toDouble(&isNumber);
        if (field.startsWith(QByteArray(name + '=')) && isNumber)
            return value;
    }
    throw MeasurementError(QStringLiteral("a program said \"%1\"").arg(QString::fromUtf8(line)));
}

Runner::Runner(const QString &folder, const QString &profiles)
    : profiles_(profiles.isEmpty() ? folder : profiles) {
    holdOffInterrupts();
    QDir().mkpath(profiles_);
}

QString Runner::pathOf(const QString &program) {
    return QDir(QCoreApplication::applicationDirPath()).filePath(program);
}

Sample Runner::run(const QString &program, const QStringList &arguments) const {
    return parseSample(outputOf(pathOf(program), arguments, workerEnvironment()));
}

double Runner::countInstructions(const QStringList &options, const QString &program,
                                 const QStringList &arguments, const QString &profile,
                                 QByteArray &output) const {
    const QString path = QDir(profiles_).filePath(profile + u".callgrind");
    QStringList all{QStringLiteral("--tool=callgrind"), QStringLiteral("-q"),
                    QStringLiteral("--callgrind-out-file=%1").arg(path)};
    all += options;
    all.append(pathOf(program));
    all += arguments;
    output = outputOf(QStringLiteral("valgrind"), all,
                      options.isEmpty() ? QProcessEnvironment::systemEnvironment()
                                        : workerEnvironment());
    return readTotal(path);
}

double Runner::count(const QString &program, const QStringList &arguments, const QString &profile,
                     Sample &sample) const {
    QByteArray output;
    const double instructions = countInstructions({QStringLiteral("--instr-atstart=no")}, program,
                                                  arguments, profile, output);
    sample = parseSample(output);
    return instructions;
}

Sample Runner::runWhole(const QString &program, const QStringList &arguments,
                        QByteArray &output) const {
    const double cpuBefore = childrenCpu();
    const auto begin = std::chrono::steady_clock::now();
    output = outputOf(pathOf(program), arguments, QProcessEnvironment::systemEnvironment());
    Sample sample;
    sample.wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    sample.cpu = childrenCpu() - cpuBefore;
    return sample;
}

double Runner::countWhole(const QString &program, const QStringList &arguments,
                          const QString &profile) const {
    QByteArray output;
    return countInstructions({}, program, arguments, profile, output);
}

ServerProcess::ServerProcess(int delay)
    : process_(Runner::pathOf(QStringLiteral("feedserver")),
               {QStringLiteral("--delay"), QString::number(delay)}, QProcess::StandardOutput) {
    const QByteArray said = process_.awaitLine("http://").trimmed();
    address_ = QString::fromLatin1(said.mid(said.indexOf("http://")));
}

QString ServerProcess::feed(int items, int seed) const {
    return QStringLiteral("%1/generated/%2/%3").arg(address_).arg(items).arg(seed);
}

} // namespace tidebrook
