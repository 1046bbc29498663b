#pragma once

#include "feed_server/feed_server.h"
#include "support/text_printing.h"

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace tidebrook {

/// What a run of the command line ended with.
struct CtlRun {
    int exitCode;
    QString out;
    QString err;

    QStringList lines() const { return out.split(u'\n', Qt::SkipEmptyParts); }
};

/// Runs the real command line on a device root of its own, which has an empty seed file.
class CtlProcess {
public:
    CtlProcess();

    QString root() const { return folder_.filePath(QStringLiteral("device")); }
    QString filePath(const QString &name) const { return root() + u'/' + name; }
    void setEnvironment(const QString &name, const QString &value);

    CtlRun run(const QStringList &arguments);
    /// Runs the command line in a shell behind `prelude`, such as a limit.
    CtlRun runBehind(const QString &prelude, const QStringList &arguments);
    /// Starts the command line; the caller ends it.
    std::unique_ptr<QProcess> start(const QStringList &arguments);

private:
    CtlRun finish(QProcess &process);

    QTemporaryDir folder_;
    QProcessEnvironment environment_;
};

/// A device, a server of feeds, and the command line, whose arguments are divided by blanks unless
/// they stand in double quotes.
class CtlTest : public testing::Test {
protected:
    CtlRun run(const QString &arguments) { return ctl_.run(split(arguments)); }
    /// Runs what is to succeed; what it printed.
    QString ok(const QString &arguments);
    /// Runs what is to fail with a message that contains `words`, and prints nothing.
    void fails(const QString &arguments, const QString &words = {}, int exitCode = 1);
    /// Starts them at the same time; their exit codes.
    QList<int> together(const QStringList &calls);
    void expectSound() { EXPECT_EQ(ok(QStringLiteral("check")), QString()); }
    void waitFor(const std::function<bool()> &condition);
    static QStringList split(const QString &arguments) { return QProcess::splitCommand(arguments); }

    FeedServer server_;
    CtlProcess ctl_;
};

} // namespace tidebrook
