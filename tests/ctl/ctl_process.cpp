#include "ctl/ctl_process.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <vector>

namespace tidebrook {

CtlProcess::CtlProcess() : environment_(QProcessEnvironment::systemEnvironment()) {
    QDir().mkpath(filePath(QStringLiteral("windows")));
    QFile(filePath(QStringLiteral("windows/RSSChannels.txt"))).open(QIODevice::WriteOnly);
    setEnvironment(QStringLiteral("TIDEBROOK_HOME"), root());
}

void CtlProcess::setEnvironment(const QString &name, const QString &value) {
    environment_.insert(name, value);
}

std::unique_ptr<QProcess> CtlProcess::start(const QStringList &arguments) {
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(environment_);
    process->start(QStringLiteral(TIDEBROOKCTL), arguments);
    return process;
}

CtlRun CtlProcess::run(const QStringList &arguments) { return finish(*start(arguments)); }

CtlRun CtlProcess::runBehind(const QString &prelude, const QStringList &arguments) {
    QProcess process;
    process.setProcessEnvironment(environment_);
    process.start(QStringLiteral("/bin/sh"),
                  QStringList{QStringLiteral("-c"), QString(prelude + u"; exec \"$0\" \"$@\""),
                              QStringLiteral(TIDEBROOKCTL)} +
                      arguments);
    return finish(process);
}

CtlRun CtlProcess::finish(QProcess &process) {
    process.waitForFinished(60'000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QString CtlTest::ok(const QString &arguments) {
    const CtlRun done = run(arguments);
    EXPECT_EQ(done.exitCode, 0) << qPrintable(arguments + u": " + done.out + done.err);
    return done.out;
}

void CtlTest::fails(const QString &arguments, const QString &words, int exitCode) {
    const CtlRun failed = run(arguments);
    EXPECT_EQ(failed.exitCode, exitCode) << qPrintable(arguments);
    EXPECT_EQ(failed.out, u"") << qPrintable(arguments);
    EXPECT_TRUE(!failed.err.isEmpty() && failed.err.contains(words))
        << qPrintable(arguments + u": " + failed.err);
}

QList<int> CtlTest::together(const QStringList &calls) {
    std::vector<std::unique_ptr<QProcess>> processes;
    for (const QString &call : calls)
        processes.push_back(ctl_.start(split(call)));
    QList<int> codes;
    for (const auto &process : processes) {
        process->waitForFinished(60'000);
        codes.append(process->exitCode());
    }
    return codes;
}

void CtlTest::waitFor(const std::function<bool()> &condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition() && timer.elapsed() < 20'000)
        QThread::msleep(5);
    ASSERT_TRUE(condition());
}

} // namespace tidebrook
