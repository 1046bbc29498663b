#include "feed_server/generated_feed.h"
#include "platform/named_event.h"
#include "platform/service.h"
#include "service/running_service.h"
#include "support/full_disk.h"
#include "support/test_device.h"
#include "update/request_file.h"

#include <QFile>

#include <sys/stat.h>

#include <csignal>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr char smallFeed[] = "<rss><channel><item><title>t</title><guid>g</guid></item>"
                             "</channel></rss>";

class RequestTest : public RunningService {
protected:
    void SetUp() override { start(); }

    void signalRequest() { NamedEvent(root_, requestEvent, NamedEvent::Reset::Manual).set(); }
};

TEST_F(RequestTest, IsServedAndAnswered) {
    const RefreshJob job = addChannel(u"café"_s);
    server_.serve(u"/café"_s, generatedFeed(4, 1));
    EXPECT_EQ(request(job), DownloadAnswer::Done);
    EXPECT_EQ(counts(u"café"_s), u"4/4");
    EXPECT_EQ(ctl_.run({u"setting"_s, u"UnreadItems"_s, u"--today"_s}).out, u"4\n");

    server_.serve(u"/café"_s, "<html/>");
    EXPECT_EQ(request(job), DownloadAnswer::Failed);
    EXPECT_EQ(errorCode(), 1003u);
    ASSERT_EQ(ctl_.run({u"setting"_s, u"ERRORNO"_s, u"0"_s}).exitCode, 0);
    for (const QByteArray &nothing : {QByteArray(), QByteArray("\xFF\xFE")}) {
        server_.serve(u"/café"_s, nothing);
        EXPECT_EQ(request(job), DownloadAnswer::Failed);
        EXPECT_EQ(errorCode(), 1003u) << "and no empty answer is a failed download";
    }
    EXPECT_EQ(request({server_.url(u"/café"), u"nobody's"_s, u"C"_s}), DownloadAnswer::Failed);
    EXPECT_EQ(request({u"http://127.0.0.1:1/"_s, u"café"_s, u"C"_s}), DownloadAnswer::Failed);
    EXPECT_EQ(errorCode(), 1007u);
    expectSound();
}

TEST_F(RequestTest, WhatIsNoRequestIsRefusedAndNothingElse) {
    const RefreshJob job = addChannel(u"a"_s);
    server_.serve(u"/a"_s, smallFeed);
    const QString line = u"a\t"_s + job.url + u"\tC";
    const QString path = requestFilePath(root_);
    const QByteArray files[] = {
        {}, // missing
        "",
        utf16(line).first(30),
        utf16(line),
        utf16(line + u'\n').chopped(1),
        QByteArray(10'000'000, 'x'),
        utf16(QString(5'000'000, u'\t') + u'\n'),
        (line + u'\n').toUtf8(),
        utf16(u"a C\n"_s),
        utf16(u"a\t" + job.url + u"\t\tC\n"),
        utf16(line + u"\n" + line + u"\n"),
        utf16(u"\t\t\n"_s),
    };
    for (const QByteArray &content : files) {
        QFile::remove(path);
        if (!content.isNull()) {
            ASSERT_TRUE(writeFile(path, content));
        }
        DownloadAnswers answers(root_);
        signalRequest();
        EXPECT_EQ(answers.wait(30s), DownloadAnswer::Failed) << content.size();
        EXPECT_EQ(errorCode(), 1012u);
    }
    EXPECT_EQ(server_.requests().size(), 0);
    EXPECT_EQ(request(job), DownloadAnswer::Done);

    // Nor is what would be waited for.
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    DownloadAnswers answers(root_);
    signalRequest();
    EXPECT_EQ(answers.wait(30s), DownloadAnswer::Failed);
    EXPECT_EQ(request(job), DownloadAnswer::Failed) << "and it is not replaced";
}

TEST_F(RequestTest, OneThatCannotBeWrittenDoesNotHaveTheOneBeforeServed) {
    const RefreshJob before = addChannel(u"before"_s);
    server_.serve(u"/before"_s, smallFeed);
    ASSERT_EQ(request(before), DownloadAnswer::Done);
    server_.clearRequests();
    {
        const FullDisk disk;
        EXPECT_EQ(request({server_.url(u"/other"), u"other"_s, u"C"_s}), DownloadAnswer::Failed);
    }
    EXPECT_EQ(server_.requests().size(), 0);
    EXPECT_EQ(request(before), DownloadAnswer::Done);
}

TEST_F(RequestTest, TenWithinASecondAreAllServed) {
    QList<RefreshJob> jobs;
    for (int i = 0; i < 10; ++i) {
        const QString name = u"ch%1"_s.arg(i);
        server_.serve(u'/' + name, generatedFeed(2, static_cast<quint32>(i)));
        jobs.append(addChannel(name));
    }
    server_.setDelay(300ms);
    DownloadAnswers answers(root_);
    for (const RefreshJob &job : jobs) {
        requestDownload(root_, job, answers);
        // As fast as a downloader sees them at all: the file holds the latest alone.
        waitFor(
            [this] { return !NamedEvent(root_, requestEvent, NamedEvent::Reset::Manual).test(); });
    }
    EXPECT_EQ(answers.wait(30s), DownloadAnswer::Done);
    waitFor([this] { return ctl_.run({u"channels"_s}).out.count(u"2/2"_s) == 10; });
    EXPECT_EQ(answers.wait(0s), DownloadAnswer::TimedOut) << "only the last one is answered";
}

TEST_F(RequestTest, AnAnswerToOneThatWasGivenUpIsNotTakenForTheNext) {
    const RefreshJob first = addChannel(u"first"_s);
    const RefreshJob second = addChannel(u"second"_s);
    for (const RefreshJob &next : {second, first}) {
        DownloadAnswers answers(root_);
        server_.clearRequests();
        server_.trickle(u"/first"_s, "<not-rss/>", 30ms);
        requestDownload(root_, first, answers);
        waitFor([this] { return server_.requests().size() == 1; });
        server_.trickle(u'/' + next.channelName, smallFeed, 10ms);
        requestDownload(root_, next, answers);
        EXPECT_EQ(answers.wait(30s), DownloadAnswer::Done);
        EXPECT_EQ(answers.wait(0s), DownloadAnswer::TimedOut);
    }
}

TEST_F(RequestTest, OfSeveralThatWaitTheNewestIsAnswered) {
    std::vector<std::unique_ptr<QProcess>> requesters;
    for (qsizetype i = 1; i <= 5; ++i) {
        const QString name = u"ch%1"_s.arg(i);
        server_.trickle(u'/' + name, i == 5 ? smallFeed : "<not-rss/>", 20ms);
        addChannel(name);
        requesters.push_back(ctl_.start({u"request"_s, u"C"_s, name, u"--timeout"_s, u"4"_s}));
        waitFor([&] { return server_.requests().size() == i; });
    }
    requesters.back()->waitForFinished(20'000);
    EXPECT_EQ(requesters.back()->readAllStandardOutput(), "done\n");
    requesters.pop_back();
    for (const auto &requester : requesters) {
        requester->waitForFinished(20'000);
        EXPECT_TRUE(requester->readAllStandardError().contains("(1012)"));
    }
}

TEST_F(RequestTest, AnAnswerThatIsHeldUpIsNotTakenForTheNext) {
    const RefreshJob job = addChannel(u"a"_s);
    server_.trickle(u"/a"_s, smallFeed, 10ms);
    DownloadAnswers answers(root_);
    {
        // The settings are locked, and so the failure cannot be told before the next request.
        Registry registry(root_);
        const Registry::Batch lock(registry);
        ASSERT_TRUE(lock.isOpen());
        requestDownload(root_, {u"file:///none"_s, u"a"_s, u"C"_s}, answers);
        waitFor(
            [this] { return !NamedEvent(root_, requestEvent, NamedEvent::Reset::Manual).test(); });
        requestDownload(root_, job, answers);
    }
    EXPECT_EQ(answers.wait(30s), DownloadAnswer::Done);
}

TEST_F(RequestTest, AServerThatNeverAnswersKeepsNobodyElseWaiting) {
    const RefreshJob stuck = addChannel(u"stuck"_s);
    const RefreshJob good = addChannel(u"good"_s);
    server_.hang(u"/stuck"_s);
    server_.serve(u"/good"_s, smallFeed);
    DownloadAnswers answers(root_);
    for (qsizetype i = 1; i <= 5; ++i) {
        requestDownload(root_, stuck, answers);
        waitFor([&] { return server_.requests().size() == i; });
    }
    requestDownload(root_, good, answers);
    EXPECT_EQ(answers.wait(10s), DownloadAnswer::Done);
}

TEST_F(RequestTest, ARequesterThatIsKilledLeavesNothingStuck) {
    const RefreshJob job = addChannel(u"a"_s);
    server_.trickle(u"/a"_s, smallFeed, 5ms);
    for (int i = 0; i < 3; ++i) {
        server_.clearRequests();
        const auto requester = ctl_.start({u"request"_s, u"C"_s, u"a"_s});
        waitFor([this] { return server_.requests().size() == 1; });
        requester->kill();
        requester->waitForFinished();
    }
    EXPECT_EQ(request(job), DownloadAnswer::Done);
    expectSound();
}

TEST_F(RequestTest, ADownloaderThatIsKilledIsToldByTheTimeOutAndStartedAnew) {
    addChannel(u"a"_s);
    server_.hang(u"/a"_s);
    const auto requester = ctl_.start({u"request"_s, u"C"_s, u"a"_s, u"--timeout"_s, u"3"_s});
    waitFor([this] { return server_.requests().size() == 1; });
    EXPECT_EQ(end(SIGKILL), -1);
    requester->waitForFinished(20'000);
    EXPECT_EQ(requester->exitCode(), 1);
    EXPECT_TRUE(requester->readAllStandardError().contains("(1012)"));
    EXPECT_EQ(errorCode(), 1012u);
    expectSound();
    server_.serve(u"/a"_s, smallFeed);
    EXPECT_EQ(ctl_.run({u"request"_s, u"C"_s, u"a"_s}).out, u"done\n");
    EXPECT_EQ(counts(u"a"_s), u"1/1");
}

TEST_F(RequestTest, ASignalEndsADownloadAndTellsWhoWaitsForIt) {
    const RefreshJob job = addChannel(u"a"_s);
    for (const int signal : {SIGTERM, SIGINT}) {
        server_.hang(u"/a"_s);
        server_.clearRequests();
        if (!isRunning())
            start();
        DownloadAnswers answers(root_);
        requestDownload(root_, job, answers);
        waitFor([this] { return server_.requests().size() == 1; });
        EXPECT_EQ(end(signal), 0);
        EXPECT_EQ(answers.wait(0s), DownloadAnswer::Failed);
        EXPECT_FALSE(runningService(root_));
        expectSound();
    }
}

TEST_F(RequestTest, AServiceWhoseEventWasTakenAwayEndsAndIsReplaced) {
    const RefreshJob job = addChannel(u"a"_s);
    server_.serve(u"/a"_s, smallFeed);
    NamedEvent kept(root_, requestEvent, NamedEvent::Reset::Manual);
    ASSERT_TRUE(QFile::remove(root_.path() + u"/run/RSS_NONAUTODL.event"));
    kept.set();
    EXPECT_EQ(end(0), 1);
    EXPECT_EQ(ctl_.run({u"request"_s, u"C"_s, u"a"_s}).out, u"done\n");
}

TEST_F(RequestTest, ADeviceThatIsTakenAwayEndsTheService) {
    const NamedEvent keeper(root_, requestEvent, NamedEvent::Reset::Manual);
    ASSERT_TRUE(QFile::rename(root_.path(), root_.path() + u".away"));
    NamedEvent(DeviceRoot(root_.path() + u".away"), requestEvent, NamedEvent::Reset::Manual).set();
    EXPECT_EQ(end(0), 1);
}

} // namespace
} // namespace tidebrook
