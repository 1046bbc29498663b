#include "feed_server/generated_feed.h"
#include "platform/desktop/service.h"
#include "platform/sync/named_event.h"
#include "service/running_service.h"
#include "support/full_disk.h"
#include "support/waiting.h"
#include "test_device/test_device.h"
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

    NamedEvent event() { return {root_, requestEvent, NamedEvent::Reset::Manual}; }
    void ask(const RefreshJob &job) { requestDownload(root_, job, answers_); }
    /// As fast as a downloader sees requests at all: the file holds the latest alone.
    void askAndBeSeen(const RefreshJob &job) {
        ask(job);
        waitFor([this] { return !event().test(); });
    }
    DownloadAnswer answer(std::chrono::seconds timeout = 30s) { return answers_.wait(timeout); }
    DownloadAnswer request(const RefreshJob &job) {
        ask(job);
        return answer();
    }
    QString errorCode() { return ok(u"setting ERRORNO"_s).trimmed(); }

    DownloadAnswers answers_{root_};
};

TEST_F(RequestTest, IsServedAndAnswered) {
    const RefreshJob job = addChannel(u"café"_s, generatedFeed(4, 1));
    EXPECT_EQ(request(job), DownloadAnswer::Done);
    EXPECT_TRUE(ok(u"channels"_s).startsWith(u"4/4\tcafé\t"));
    EXPECT_EQ(ok(u"setting UnreadItems --today"_s), u"4\n");
    for (const QByteArray &noFeed : {QByteArray("<html/>"), QByteArray(), QByteArray("\xFF\xFE")}) {
        ok(u"setting ERRORNO 0"_s);
        server_.serve(u"/café"_s, noFeed);
        EXPECT_EQ(request(job), DownloadAnswer::Failed);
        EXPECT_EQ(errorCode(), u"1003") << "and no empty answer is a failed download";
    }
    EXPECT_EQ(request({server_.url(u"/café"), u"nobody's"_s, u"C"_s}), DownloadAnswer::Failed);
    EXPECT_EQ(request({u"http://127.0.0.1:1/"_s, u"café"_s, u"C"_s}), DownloadAnswer::Failed);
    EXPECT_EQ(errorCode(), u"1007");
    expectSound();
}

TEST_F(RequestTest, WhatIsNoRequestIsRefusedAndNothingElse) {
    const RefreshJob job = addChannel(u"a"_s, smallFeed);
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
        utf16(u"a\t" + job.url + u"\t\tC\n"),
        utf16(line + u"\n" + line + u"\n"),
        utf16(u"\t\t\n"_s),
    };
    for (const QByteArray &content : files) {
        QFile::remove(path);
        if (!content.isNull()) {
            ASSERT_TRUE(writeFile(path, content));
        }
        for (int told = 1; told <= 9; ++told) {
            answers_.expect();
            event().set();
            ASSERT_EQ(answer(), DownloadAnswer::Failed) << told << ": " << content.size();
        }
        EXPECT_EQ(errorCode(), u"1012");
    }
    EXPECT_EQ(server_.requests().size(), 0);
    EXPECT_EQ(request(job), DownloadAnswer::Done);

    // Nor is what would be waited for.
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    EXPECT_EQ(request(job), DownloadAnswer::Failed) << "and it is not replaced";
}

TEST_F(RequestTest, OneThatCannotBeWrittenDoesNotHaveTheOneBeforeServed) {
    const RefreshJob before = addChannel(u"before"_s, smallFeed);
    ASSERT_EQ(request(before), DownloadAnswer::Done);
    {
        const FullDisk disk;
        EXPECT_EQ(request({server_.url(u"/other"), u"other"_s, u"C"_s}), DownloadAnswer::Failed);
    }
    EXPECT_EQ(server_.requests().size(), 1);
    EXPECT_EQ(request(before), DownloadAnswer::Done);
}

TEST_F(RequestTest, TenWithinASecondAreAllServed) {
    QList<RefreshJob> jobs;
    for (quint32 i = 0; i < 10; ++i)
        jobs.append(addChannel(u"ch%1"_s.arg(i), generatedFeed(2, i)));
    server_.setDelay(300ms);
    for (const RefreshJob &job : jobs)
        askAndBeSeen(job);
    EXPECT_EQ(answer(), DownloadAnswer::Done);
    waitFor([this] { return ok(u"channels"_s).count(u"2/2"_s) == 10; });
    EXPECT_EQ(answer(0s), DownloadAnswer::TimedOut) << "only the last one is answered";
}

TEST_F(RequestTest, AnAnswerToOneThatWasGivenUpIsNotTakenForTheNext) {
    const RefreshJob first = addChannel(u"first"_s);
    const RefreshJob second = addChannel(u"second"_s);
    for (const RefreshJob &next : {second, first}) {
        server_.clearRequests();
        server_.trickle(u"/first"_s, "<not-rss/>", 30ms);
        ask(first);
        waitForRequests(1);
        server_.trickle(u'/' + next.channelName, smallFeed, 10ms);
        EXPECT_EQ(request(next), DownloadAnswer::Done);
        EXPECT_EQ(answer(0s), DownloadAnswer::TimedOut);
    }
    // Nor one that is held up, because the settings are locked until the next request is made.
    {
        Registry registry(root_);
        const Registry::Batch lock(registry);
        ASSERT_TRUE(lock.isOpen());
        askAndBeSeen({u"file:///none"_s, u"first"_s, u"C"_s});
        ask(second);
    }
    EXPECT_EQ(answer(), DownloadAnswer::Done);
}

TEST_F(RequestTest, OfSeveralThatWaitTheNewestIsAnswered) {
    std::vector<std::unique_ptr<QProcess>> requesters;
    for (int i = 1; i <= 5; ++i)
        addChannel(u"ch%1"_s.arg(i), smallFeed);
    for (qsizetype i = 1; i <= 5; ++i) {
        const QString name = u"ch%1"_s.arg(i);
        if (i < 5)
            server_.trickle(u'/' + name, "<not-rss/>", 100ms); // until all have been asked for
        requesters.push_back(start(u"request C %1 --timeout 4"_s.arg(name)));
        waitForRequests(i);
    }
    for (const auto &requester : requesters) {
        requester->waitForFinished(patienceLimit);
        EXPECT_EQ(requester->readAllStandardOutput() == "done\n", requester == requesters.back());
        EXPECT_EQ(requester->readAllStandardError().contains("(1012)"),
                  requester != requesters.back());
    }
}

TEST_F(RequestTest, AServerThatNeverAnswersKeepsNobodyElseWaiting) {
    const RefreshJob stuck = addChannel(u"stuck"_s);
    const RefreshJob good = addChannel(u"good"_s, smallFeed);
    server_.hang(u"/stuck"_s);
    for (qsizetype i = 1; i <= 5; ++i) {
        ask(stuck);
        waitForRequests(i);
    }
    ask(good);
    EXPECT_EQ(answer(10s), DownloadAnswer::Done);
}

TEST_F(RequestTest, ASignalEndsADownloadAndTellsWhoWaitsForIt) {
    const RefreshJob job = addChannel(u"a"_s);
    server_.hang(u"/a"_s);
    for (const int signal : {SIGTERM, SIGINT}) {
        server_.clearRequests();
        if (!isRunning())
            start();
        ask(job);
        waitForRequests(1);
        EXPECT_EQ(end(signal), 0);
        EXPECT_EQ(answer(0s), DownloadAnswer::Failed);
        EXPECT_FALSE(runningService(root_));
        expectSound();
    }
}

TEST_F(RequestTest, AServiceWhoseEventOrDeviceWasTakenAwayEndsAndIsReplaced) {
    addChannel(u"a"_s, smallFeed);
    NamedEvent kept = event();
    ASSERT_TRUE(QFile::remove(root_.path() + u"/run/RSS_NONAUTODL.event"));
    kept.set();
    EXPECT_EQ(end(0), 1);
    EXPECT_EQ(ok(u"request C a"_s), u"done\n");
    ok(u"service stop"_s);

    start();
    const QString away = root_.path() + u".away";
    ASSERT_TRUE(QFile::rename(root_.path(), away));
    NamedEvent(DeviceRoot(away), requestEvent, NamedEvent::Reset::Manual).set();
    EXPECT_EQ(end(0), 1);
}

} // namespace
} // namespace tidebrook
