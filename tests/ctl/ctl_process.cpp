#include "ctl/ctl_process.h"
#include "support/waiting.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>

#include <vector>

namespace tidebrook {

using namespace Qt::StringLiterals;

CtlTest::CtlTest() {
    QDir().mkpath(filePath(u"windows"_s));
    writeFile(filePath(u"windows/RSSChannels.txt"_s), {});
    environment_.insert(u"TIDEBROOK_HOME"_s, root_.path());
    // The second, direct download of a feed goes to the server too.
    environment_.insert(u"TIDEBROOK_HTTP_PORT"_s, QString::number(server_.port()));
}

std::unique_ptr<QProcess> CtlTest::start(const QString &arguments, const QString &prelude) {
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(environment_);
    QStringList call =
        QStringList(QStringLiteral(TIDEBROOKCTL)) + QProcess::splitCommand(arguments);
    if (!prelude.isNull())
        call = QStringList{u"/bin/sh"_s, u"-c"_s, prelude + u"; exec \"$0\" \"$@\""} + call;
    process->start(call.first(), call.sliced(1));
    return process;
}

CtlRun CtlTest::run(const QString &arguments, const QString &prelude) {
    const auto process = start(arguments, prelude);
    const bool isEnded = process->waitForFinished(60'000);
    return {isEnded && process->exitStatus() == QProcess::NormalExit ? process->exitCode() : -1,
            QString::fromUtf8(process->readAllStandardOutput()),
            QString::fromUtf8(process->readAllStandardError())};
}

QString CtlTest::ok(const QString &arguments) {
    const CtlRun done = run(arguments);
    EXPECT_EQ(done.exitCode, 0) << qPrintable(arguments + u": " + done.out + done.err);
    return done.out;
}

QString CtlTest::faults() {
    static const QRegularExpression notes(u"^note: .*\n"_s, QRegularExpression::MultilineOption);
    return ok(u"check"_s).remove(notes);
}

void CtlTest::fails(const QString &arguments, const QString &words, int exitCode) {
    const CtlRun failed = run(arguments);
    EXPECT_EQ(failed.exitCode, exitCode) << qPrintable(arguments);
    EXPECT_EQ(failed.out, u"") << qPrintable(arguments);
    EXPECT_TRUE(!failed.err.isEmpty() && failed.err.contains(words))
        << qPrintable(arguments + u": " + failed.err);
}

RefreshJob CtlTest::addChannel(const QString &name, const QByteArray &feed) {
    RefreshJob job{server_.url(QString(u'/' + name)), name, u"C"_s};
    if (!feed.isNull())
        server_.serve(u'/' + name, feed);
    EXPECT_EQ(ok(u"add --create --feed 0 C %1 %2"_s.arg(name, job.url)).trimmed(), name);
    return job;
}

QList<int> CtlTest::together(const QStringList &calls) {
    std::vector<std::unique_ptr<QProcess>> processes;
    for (const QString &call : calls)
        processes.push_back(start(call));
    QList<int> codes;
    for (const auto &process : processes) {
        process->waitForFinished(60'000);
        codes.append(process->exitCode());
    }
    return codes;
}

void CtlTest::waitFor(const std::function<bool()> &condition) {
    ASSERT_TRUE(QTest::qWaitFor(condition, patienceLimit));
}

} // namespace tidebrook
