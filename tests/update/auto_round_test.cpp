#include "feed_server/direct_port.h"
#include "feed_server/generated_feed.h"
#include "platform/base/clock.h"
#include "platform/sync/stop_signal.h"
#include "support/open_store.h"
#include "update/auto_list.h"
#include "update/auto_round.h"
#include "update/update_history.h"

#include <QFile>

#include <gtest/gtest.h>

#include <thread>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class AutoRoundTest : public OpenStore {
protected:
    void addChannel(const QString &name, const QString &url) {
        device_.store->InsertChannel({u"C"_s, name, url});
        isAutoUpdated(device_.root, name); // makes the list
        ASSERT_TRUE(setAutoUpdate(device_.root, *device_.store, {url, name, u"C"_s}, true));
    }
    /// Serves so many items at /NAME, or nothing yet, and adds the channel.
    void addFeed(const QString &name, int items = 0) {
        if (items > 0)
            server_.serve(u'/' + name, generatedFeed(items, 1));
        addChannel(name, server_.url(QString(u'/' + name)));
    }
    void addAgain(const QString &name, const QString &path) {
        device_.store->DeleteChannel(name);
        device_.store->InsertChannel({u"C"_s, name, server_.url(path)});
    }

    QDateTime at(double hours) const { return start_.addSecs(static_cast<qint64>(hours * 3600)); }
    /// Runs the round that is due so many hours after the start.
    AutoRoundResult runRound(double hours = 0, const StopSignal *stop = nullptr) {
        const FixedClock clock(at(hours));
        server_.clearRequests();
        HttpLimits limits;
        limits.stop = stop;
        return runAutoRound({device_.root, *device_.registry, *device_.store, limits},
                            {at(hours), at(hours), false},
                            [](const RefreshJob &, const RefreshResult &) {});
    }

    QByteArray sentHeader(QByteArrayView name) {
        const auto requests = server_.requests();
        return requests.size() == 1 ? requests.first().header(name)
                                    : QByteArray::number(requests.size()) + " requests";
    }

    const QDateTime start_ = QDateTime(QDate(2026, 6, 10), QTime(0, 0), Qt::UTC);
    FeedServer server_;
};

TEST_F(AutoRoundTest, AnUnchangedFeedIsNotSentAgainUntilItsArticlesAreGone) {
    const QByteArray etag = "W/\"a%20b,\xC3\xA9\\\"";
    const QByteArray lastModified = "Fri, 01 Jan 2026 00:00:00 +1 (sic)";
    server_.serveWithValidators(u"/f"_s, generatedFeed(5, 1), etag, lastModified);
    addFeed(u"f"_s);
    EXPECT_EQ(runRound().storedCount, 5);
    EXPECT_EQ(sentHeader("If-None-Match"), QByteArray());

    EXPECT_EQ(runRound(1).unchanged, 1);
    EXPECT_EQ(sentHeader("If-None-Match"), etag);
    EXPECT_EQ(sentHeader("If-Modified-Since"), lastModified);
    EXPECT_EQ(device_.counts(u"C"_s, u"f"_s), u"5/5");

    // Six days on, what was stored is too old, and gone with the next round, as it would be if the
    // whole feed had come. The one after that brings the articles that the feed still has.
    EXPECT_EQ(runRound(6 * 24).unchanged, 1);
    EXPECT_EQ(device_.counts(u"C"_s, u"f"_s), u"0/0");
    EXPECT_EQ(runRound(6 * 24 + 1).storedCount, 5);
    EXPECT_EQ(runRound(6 * 24 + 2).unchanged, 1);
}

TEST_F(AutoRoundTest, WhatIsNotStoredIsAskedForWhole) {
    server_.serveWithValidators(u"/f"_s, generatedFeed(5, 1), "\"1\"");
    server_.serveWithValidators(u"/g"_s, generatedFeed(3, 2), "\"1\"");
    addFeed(u"f"_s);
    runRound();
    const auto expectWhole = [this](double moment, const char *why) {
        EXPECT_GT(runRound(moment).storedCount, 0) << why;
        EXPECT_EQ(sentHeader("If-None-Match"), QByteArray()) << why;
        EXPECT_EQ(runRound(moment + 0.5).unchanged, 1) << why;
    };
    addAgain(u"f"_s, u"/f"_s);
    expectWhole(1, "the channel was deleted and added again");
    device_.store->SetChannelLink(u"f"_s, server_.url(u"/g"));
    expectWhole(2, "the channel has another address");
    const QString states = device_.root.filePath(u"UpdateState.db");
    addAgain(u"f"_s, u"/g"_s);
    QFile::remove(states);
    expectWhole(3, "the state was deleted");
    addAgain(u"f"_s, u"/g"_s);
    ASSERT_TRUE(writeFile(states, QByteArray(9000, 'x')));
    expectWhole(4, "the state was damaged");
}

TEST_F(AutoRoundTest, ARoundWithoutANetworkIsHeldAgainstNobody) {
    addChannel(u"f"_s, u"http://127.0.0.1:1/f"_s);
    addChannel(u"g"_s, u"http://127.0.0.1:1/g"_s);
    EXPECT_FALSE(runRound().isOver);
    EXPECT_EQ(runRound(0.1).tried, 2) << "tried anew";
    device_.store->SetChannelLink(u"g"_s, server_.url(u"/g"));
    server_.serve(u"/g"_s, generatedFeed(1, 1));
    EXPECT_TRUE(runRound(0.2).isOver);
    EXPECT_EQ(runRound(0.5).leftAlone, 1) << "now it is the one feed that fails";
    EXPECT_EQ(device_.lastErrorCode(), 0u) << "told to nobody who waits for something else";
}

TEST_F(AutoRoundTest, AFeedWhoseItemsCouldNotAllBeStoredIsSentAgain) {
    server_.serveWithValidators(u"/f"_s,
                                "<rss><channel><item><title>a</title><guid>1</guid></item>"
                                "<item><title>b</title></item>"
                                "<item><title>c</title><guid>3</guid></item></channel></rss>",
                                "\"1\"");
    addFeed(u"f"_s);
    EXPECT_EQ(runRound().failed, 1);
    EXPECT_EQ(device_.titles(u"f"_s), QStringList(u"a"_s)) << "what came before is kept";
    runRound(24);
    EXPECT_EQ(sentHeader("If-None-Match"), QByteArray());
}

TEST_F(AutoRoundTest, AFailingFeedIsTriedLessAndLessOften) {
    addFeed(u"f"_s);
    QList<double> tries;
    const auto live = [&](int from, int to) {
        for (int halfHour = 2 * from; halfHour < 2 * to; ++halfHour) {
            if (runRound(halfHour / 2.0).tried > 0)
                tries.append(halfHour / 2.0);
        }
    };
    server_.answerStatus(u"/f"_s, 404);
    live(0, 100);
    EXPECT_EQ(tries, (QList<double>{0, 1, 3, 7, 15, 31, 55, 79}));

    // A request of the user's is a new beginning, also when that fails. It does
    // not take the channel's turn.
    tries.clear();
    {
        const FixedClock clock(at(100));
        UpdateStateStore states(device_.root);
        noteRequested(states, {server_.url(u"/f"), u"f"_s, u"C"_s}, {1007, 0, {}, true});
    }
    live(100, 104);
    EXPECT_EQ(tries, (QList<double>{100, 101, 103}));

    // And so is success.
    tries.clear();
    server_.serve(u"/f"_s, generatedFeed(1, 1));
    live(104, 108);
    server_.answerStatus(u"/f"_s, 404);
    live(108, 110);
    EXPECT_EQ(tries, (QList<double>{107, 107.5, 108, 109}));
}

TEST_F(AutoRoundTest, ServersThatAskForItAreLeftAlone) {
    struct Case {
        QByteArray retryAfter;
        double firstTry; // hours, in half-hourly rounds
        int status;
        bool isForHost = false;
    };
    const Case cases[] = {
        {"7200", 2, 429, true}, {"Thu, 11 Jun 2099 00:00:00 GMT", 168, 503}, // a week at most
        {"36000", 10, 503}, // longer than the back-off
        {"1", 1, 503},          {"soon", 1, 503},
        {"", 1, 429, true},
    };
    addFeed(u"f"_s);
    addFeed(u"g"_s, 1);
    for (const Case &test : cases) {
        SCOPED_TRACE(test.retryAfter.toStdString());
        QFile::remove(device_.root.filePath(u"UpdateState.db"));
        server_.answerStatus(u"/f"_s, test.status, {}, {{"Retry-After", test.retryAfter}});
        EXPECT_EQ(runRound(0).tried, test.isForHost ? 1 : 2);
        EXPECT_EQ(server_.requests().size(), test.isForHost ? 1 : 2);
        server_.serve(u"/f"_s, generatedFeed(1, 2));
        EXPECT_GT(runRound(test.firstTry - 0.5).leftAlone, 0);
        EXPECT_EQ(runRound(test.firstTry).leftAlone, 0);
    }
}

TEST_F(AutoRoundTest, AHostWhoseFeedsAreBrokenIsStillAskedForTheOthers) {
    for (const QString &name : {u"a"_s, u"b"_s, u"c"_s}) {
        addFeed(name);
        server_.resetHalfWay(u'/' + name, generatedFeed(1, 1));
    }
    addFeed(u"good"_s, 1);
    EXPECT_EQ(runRound().storedCount, 1);
}

TEST_F(AutoRoundTest, FourAtATimeButNeverTwoOfOneHost) {
    server_.setDelay(60ms);
    const auto url = [this](const QString &host, const QString &path) {
        return u"http://%1:%2%3"_s.arg(host).arg(server_.port()).arg(path);
    };
    for (int i = 0; i < 12; ++i) {
        const QString path = u"/%1"_s.arg(i);
        server_.serve(path, generatedFeed(2, static_cast<quint32>(i)));
        addChannel(path, url(u"%1.localhost"_s.arg(i % 6), path));
    }
    EXPECT_EQ(runRound().storedCount, 24);
    EXPECT_EQ(server_.peakRequests(), 4);

    // Also when hosts send on to one and the same.
    server_.clearCounts();
    for (int i = 0; i < 6; ++i)
        server_.redirect(u"/%1"_s.arg(i), url(u"6.localhost"_s, u"/1%1"_s.arg(i % 2)).toUtf8());
    EXPECT_EQ(runRound(1).tried, 12);
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(server_.peakRequests(url(u"%1.localhost"_s.arg(i), {}).sliced(7).toLatin1()), 1)
            << i;
}

TEST_F(AutoRoundTest, ABrokenDocumentIsDownloadedDirectlyAndOthersAreNotHeldUp) {
    const DirectPort directPort(server_);
    server_.serve(u"/broken"_s, "<rss><channel>");
    server_.hang(u"/hangs"_s);
    server_.serve(u"/good"_s, generatedFeed(3, 1));
    for (const auto &name : {u"broken"_s, u"hangs"_s, u"good"_s})
        addChannel(name, u"http://%1.localhost:%2/%1"_s.arg(name).arg(server_.port()));
    addChannel(u"no address"_s, u"nonsense"_s);
    StopSignal stop;
    std::thread stopper([&] {
        while (device_.counts(u"C"_s, u"good"_s) != u"3/3" || server_.requests().size() < 3)
            std::this_thread::yield();
        stop.raise();
    });
    const AutoRoundResult result = runRound(0, &stop);
    stopper.join();
    EXPECT_EQ(result.storedCount, 3);
    EXPECT_EQ(result.failed, 1);

    // What the stop has cut off has its turn when the round goes on; the others have had theirs.
    server_.serve(u"/hangs"_s, generatedFeed(3, 2));
    server_.serve(u"/broken"_s, generatedFeed(3, 3));
    EXPECT_EQ(runRound().tried, 2);
    EXPECT_EQ(device_.counts(u"C"_s, u"hangs"_s), u"3/3");
    EXPECT_EQ(device_.counts(u"C"_s, u"broken"_s), u"3/3");
}

TEST_F(AutoRoundTest, ChannelsOfTheListThatAreGoneOrMovedAreNoTrouble) {
    addFeed(u"gone"_s, 2);
    addFeed(u"moved"_s);
    device_.store->DeleteChannel(u"gone"_s);
    device_.store->MoveChannel(u"moved"_s, u"D"_s);
    device_.store->SetChannelLink(u"moved"_s, server_.url(u"/gone"));
    const AutoRoundResult result = runRound();
    EXPECT_EQ(result.unknown, 1);
    EXPECT_EQ(device_.counts(u"D"_s, u"moved"_s), u"2/2");
}

TEST_F(AutoRoundTest, WhatOldArticlesHaveTakenIsReturnedToTheDisk) {
    const QString path = device_.root.filePath(u"RSSVault.sdf");
    addFeed(u"f"_s, 3000);
    for (const bool isMadeEarlier : {false, true}) { // when no database returned anything
        SCOPED_TRACE(isMadeEarlier);
        device_.store->ReleaseSession();
        if (isMadeEarlier) {
            auto database = SqliteDatabase::open(path, {});
            ASSERT_TRUE(database && database->run("PRAGMA auto_vacuum = NONE") &&
                        database->run("VACUUM"));
        }
        ASSERT_TRUE(device_.store->Open());
        server_.serve(u"/f"_s, generatedFeed(3000, 1));
        EXPECT_EQ(runRound().storedCount, 3000);
        server_.serve(u"/f"_s, generatedFeed(20, 1, 3000));
        EXPECT_EQ(runRound(6 * 24).storedCount, 20);
        device_.store->ReleaseSession();
        EXPECT_LT(QFile(path).size(), 100'000);
        ASSERT_TRUE(device_.store->Open());
        EXPECT_EQ(device_.counts(u"C"_s, u"f"_s), u"20/20");
        server_.serve(u"/f"_s, generatedFeed(0, 1));
        runRound(12 * 24);
    }
}

TEST_F(AutoRoundTest, ALockedDatabaseIsNotHeldAgainstTheFeed) {
    addFeed(u"f"_s, 2);
    {
        auto other = SqliteDatabase::open(device_.root.filePath(u"RSSVault.sdf"), {});
        ASSERT_TRUE(other);
        const SqliteTransaction lock(*other);
        EXPECT_EQ(runRound().failed, 1);
    }
    EXPECT_EQ(runRound(0.5).storedCount, 2);
}

} // namespace
} // namespace tidebrook
