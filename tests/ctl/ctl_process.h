#pragma once

#include "feed_server/feed_server.h"
#include "test_device/test_device.h"
#include "update/download_request.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <functional>

namespace tidebrook {

/// What a run of the command line ended with.
struct CtlRun {
    int exitCode; // -1 when it crashed or went on
    QString out;
    QString err;

    QStringList lines() const { return out.split(u'\n', Qt::SkipEmptyParts); }
};

/// A device root with an empty seed file, a server of feeds, and the real command line, whose
/// arguments are divided by blanks unless they stand in double quotes.
class CtlTest : public testing::Test {
protected:
    CtlTest();

    QString filePath(const QString &name) const { return root_.path() + u'/' + name; }
    /// Starts the command line, in a shell behind a prelude such as a limit if there is one.
    std::unique_ptr<QProcess> start(const QString &arguments, const QString &prelude = {});
    CtlRun run(const QString &arguments, const QString &prelude = {});
    /// Runs what is to succeed; what it printed.
    QString ok(const QString &arguments);
    /// Runs what is to fail with a message that contains `words`, and prints nothing.
    void fails(const QString &arguments, const QString &words = {}, int exitCode = 1);
    /// Starts them at the same time; their exit codes.
    QList<int> together(const QStringList &calls);
    /// Adds a channel to C whose feed the server has at /NAME; a null one is left to the test.
    RefreshJob addChannel(const QString &name, const QByteArray &feed = {});

    void expectSound() { EXPECT_EQ(faults(), QString()); }
    /// What `check` prints besides its notes.
    QString faults();
    void waitFor(const std::function<bool()> &condition);

    FeedServer server_;
    QTemporaryDir folder_;
    const DeviceRoot root_{folder_.filePath(QStringLiteral("device"))};
    QProcessEnvironment environment_ = QProcessEnvironment::systemEnvironment();
};

} // namespace tidebrook
