#include "ctl/ctl_process.h"
#include "feed_server/generated_feed.h"

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class PoliteUpdateTest : public CtlTest {
protected:
    /// The paths that a command asks the server for, in any order.
    QStringList asked(const QString &command, int exitCode) {
        server_.clearRequests();
        last_ = run(command);
        EXPECT_EQ(last_.exitCode, exitCode) << qPrintable(command);
        QStringList paths;
        for (const FeedServer::Request &request : server_.requests())
            paths.append(QString::fromUtf8(request.path));
        paths.sort();
        return paths;
    }

    CtlRun last_{};
};

TEST_F(PoliteUpdateTest, AnUnchangedFeedIsSentOnce) {
    addChannel(u"a"_s);
    server_.serveWithValidators(u"/a"_s, generatedFeed(100, 1), "\"1\"");
    ok(u"update"_s);
    const auto bytesOf = [&](const QString &command) {
        server_.clearCounts();
        EXPECT_EQ(ok(command), u"ok\t0\t100/100\ta\n");
        return server_.bytesSent();
    };
    for (const QString &command : {u"update"_s, u"update C a"_s})
        EXPECT_LT(bytesOf(command), 1000) << qPrintable(command);
    for (const QString &command :
         {u"update --full"_s, u"update C a --full"_s, u"update --pauses"_s})
        EXPECT_GT(bytesOf(command), 100'000) << qPrintable(command);
    EXPECT_EQ(run(u"updates"_s).lines().first().section(u'\t', 2, 2), u"nothing new");
    ok(u"update"_s);
    EXPECT_EQ(run(u"updates"_s).lines().first().section(u'\t', 2, 2), u"unchanged");
}

TEST_F(PoliteUpdateTest, AChannelGetsTheArticlesOfOneThatWasDeletedFromAnUnchangedFeed) {
    server_.serveWithValidators(u"/a"_s, generatedFeed(10, 1), "\"1\"");
    for (const QString &name : {u"first"_s, u"second"_s})
        ok(u"add --create C %1 "_s.arg(name) + server_.url(u"/a"));
    ok(u"update C first"_s);
    EXPECT_EQ(ok(u"update C second"_s), u"ok\t0\t0/0\tsecond\n");
    ok(u"delete first"_s);
    EXPECT_EQ(ok(u"update"_s), u"ok\t10\t10/10\tsecond\n");
}

TEST_F(PoliteUpdateTest, AFeedThatFailedOrWhoseServerAsksForItWaits) {
    environment_.insert(u"TIDEBROOK_HTTP_PORT"_s, u"1"_s);
    for (const QString &name : {u"busy"_s, u"gone"_s, u"well"_s})
        addChannel(name);
    server_.answerStatus(u"/busy"_s, 503, {}, {{"Retry-After", "36000"}});
    server_.answerStatus(u"/gone"_s, 404, "no");
    server_.serve(u"/well"_s, generatedFeed(1, 1));
    const QStringList all{u"/busy"_s, u"/gone"_s, u"/well"_s};
    EXPECT_EQ(asked(u"update"_s, 1), all);
    EXPECT_EQ(asked(u"update"_s, 0), QStringList(u"/well"_s));
    const QStringList lines = last_.lines();
    ASSERT_EQ(lines.size(), 3);
    const auto isIn = [](const QString &line, qint64 seconds) {
        const QDateTime until =
            QDateTime::fromString(line.section(u'\t', 1, 1), u"yyyy-MM-dd HH:mm");
        return qAbs(QDateTime::currentDateTime().secsTo(until) - seconds) < 600;
    };
    EXPECT_TRUE(lines[0].startsWith(u"later\t") && lines[0].endsWith(u"\tbusy"));
    EXPECT_TRUE(lines[1].startsWith(u"later\t") && lines[1].endsWith(u"\tgone"));
    EXPECT_TRUE(isIn(lines[0], 36000) && isIn(lines[1], 3600)) << qPrintable(last_.out);

    EXPECT_EQ(asked(u"update C gone"_s, 1), QStringList(u"/gone"_s)) << "the user wants it now";
    EXPECT_EQ(asked(u"update C busy"_s, 0), QStringList()) << "its server does not";
    EXPECT_TRUE(last_.out.contains(u"--full"));
    server_.serve(u"/busy"_s, generatedFeed(1, 2));
    server_.serve(u"/gone"_s, generatedFeed(1, 3));
    EXPECT_EQ(asked(u"update --full"_s, 0), all);
    EXPECT_EQ(asked(u"update"_s, 0), all) << "what went well is as before";
}

} // namespace
} // namespace tidebrook
