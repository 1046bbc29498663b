#include "bench/background_process.h"

#include "bench/runner.h"

#include <QDeadlineTimer>

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>

namespace tidebrook {

namespace {

constexpr int lineTimeout = 30'000; // ms
constexpr int endTimeout = 10'000;  // ms
constexpr int readPause = 200;      // ms, after which it is seen whether the user wants the end

} // namespace

void endWithThisThread(QProcess &process) {
    process.setChildProcessModifier([parent = getpid()] {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent)
            _exit(1);
    });
}

BackgroundProcess::BackgroundProcess(const QString &program, const QStringList &arguments,
                                     QProcess::ProcessChannel channel) {
    endWithThisThread(process_);
    process_.setProcessChannelMode(channel == QProcess::StandardOutput
                                       ? QProcess::ForwardedErrorChannel
                                       : QProcess::ForwardedOutputChannel);
    process_.setReadChannel(channel);
    process_.start(program, arguments);
    if (!process_.waitForStarted())
        throw MeasurementError(program + u": " + process_.errorString());
}

BackgroundProcess::~BackgroundProcess() { end(); }

QByteArray BackgroundProcess::awaitLine(const QByteArray &text) {
    const QDeadlineTimer deadline(lineTimeout);
    QByteArray line;
    while (!deadline.hasExpired()) {
        throwIfInterrupted();
        if (process_.canReadLine()) {
            line = process_.readLine();
            if (line.contains(text))
                return line;
        } else if (!process_.waitForReadyRead(readPause) &&
                   process_.state() == QProcess::NotRunning) {
            break;
        }
    }
    throw MeasurementError(QStringLiteral("%1 does not say \"%2\"; last it said \"%3\"")
                               .arg(process_.program(), QString::fromLocal8Bit(text),
                                    QString::fromLocal8Bit(line.trimmed())));
}

void BackgroundProcess::end() {
    if (process_.state() == QProcess::NotRunning)
        return;
    process_.terminate();
    if (!process_.waitForFinished(endTimeout))
        process_.kill();
    process_.waitForFinished(-1);
}

} // namespace tidebrook
