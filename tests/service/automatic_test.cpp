#include "feed_server/generated_feed.h"
#include "platform/sync/named_event.h"
#include "service/running_service.h"
#include "update/round_news.h"

#include <QDateTime>

#include <csignal>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class AutomaticTest : public RunningService {
protected:
    void SetUp() override {
        for (int i = 0; i < 6; ++i) {
            const QString name = u"ch%1"_s.arg(i);
            addChannel(name, generatedFeed(3, static_cast<quint32>(i)));
            ok(u"auto add " + name);
        }
        set(u"UpdateInterval"_s, 1);
    }

    void set(const QString &name, qint64 value) { ok(u"setting %1 %2"_s.arg(name).arg(value)); }

    /// What is told of a channel's updates.
    QString update(const QString &channel) {
        for (const QString &line : run(u"updates"_s).lines()) {
            if (line.section(u'\t', 0, 0) == channel)
                return line.section(u'\t', 1);
        }
        return {};
    }

    /// Waits for the end of a round that was run after `before`.
    void waitForRound(qint64 before = 0) {
        waitFor([&] { return run(u"setting LastAutoUpdate"_s).out.toLongLong() > before; });
    }
};

TEST_F(AutomaticTest, ARoundThatIsCutOffGoesOnWhereItWas) {
    set(u"UpdateMode"_s, 1);
    qint64 due = 0; // the first time, there has been no round yet
    for (const int signal : {SIGTERM, SIGKILL, SIGTERM}) {
        server_.hang(u"/ch3"_s);
        server_.clearRequests();
        start();
        waitForRequests(4);
        EXPECT_EQ(end(signal), signal == SIGTERM ? 0 : -1);
        server_.serve(u"/ch3"_s, generatedFeed(3, 3));
        server_.clearRequests();
        start();
        waitForRound(due);
        EXPECT_EQ(server_.requests().size(), 3);
        EXPECT_EQ(ok(u"channels"_s).count(u"3/3"_s), 6);
        EXPECT_EQ(end(SIGTERM), 0);
        QFile::remove(root_.filePath(u"UpdateState.db"));
        due = QDateTime::currentSecsSinceEpoch() - 1800;
        set(u"LastAutoUpdate"_s, due);
        expectSound();
    }
}

TEST_F(AutomaticTest, ARoundThatIsAskedForRunsWhateverTheSettingsSayAndReportsWhatItBrought) {
    for (const QString &bar :
         {u"UpdateMode 0"_s, u"ACTOPTION 1"_s, u"NoRoaming 1"_s, u"Status 512"_s}) // roaming
        ok(u"setting " + bar);
    server_.answerStatus(u"/ch1"_s, 404);
    const struct {
        int ofThird; // articles that its feed has
        int ofFourth;
        bool isNews;
        const char *brought;
        qsizetype asked; // what has failed is left alone
    } rounds[]{{3, 3, true, "15 of 5", 6}, {5, 4, true, "3 of 2", 5}, {5, 4, false, "3 of 2", 5}};
    NamedEvent news(root_, newArticlesEvent, NamedEvent::Reset::Auto);
    for (const auto &round : rounds) {
        server_.serve(u"/ch2"_s, generatedFeed(round.ofThird, 2));
        server_.serve(u"/ch3"_s, generatedFeed(round.ofFourth, 3));
        server_.clearRequests();
        set(u"LastAutoUpdate"_s, 0);
        ok(u"auto run"_s);
        waitForRound();
        EXPECT_EQ(news.test(), round.isNews);
        EXPECT_EQ(QString(ok(u"setting NewArticles --today"_s).trimmed() + u" of " +
                          ok(u"setting NewChannels --today"_s).trimmed()),
                  QLatin1String(round.brought));
        EXPECT_EQ(server_.requests().size(), round.asked);
    }
    EXPECT_EQ(ok(u"setting UnreadItems --today"_s), u"18\n");
}

TEST_F(AutomaticTest, ManyStartedAtOnceBecomeOne) {
    set(u"UpdateMode"_s, 1);
    EXPECT_EQ(together(QStringList(6, u"service start"_s)), QList<int>(6, 0));
    waitForRound();
    EXPECT_EQ(server_.requests().size(), 6);
    const QString first = ok(u"service status"_s);
    EXPECT_TRUE(first.startsWith(u"running"_s));
    ok(u"service restart"_s);
    EXPECT_NE(ok(u"service status"_s), first);
    ok(u"service stop"_s);
    const CtlRun status = run(u"service status"_s);
    EXPECT_EQ(status.out, u"not running\n");
    EXPECT_EQ(status.exitCode, 1);
    EXPECT_EQ(server_.requests().size(), 6) << "a restart runs no round again";
    expectSound();
}

TEST_F(AutomaticTest, WhatBecameOfUpdatesIsTold) {
    set(u"UpdateMode"_s, 2);
    set(u"UpdateTime"_s, 5);
    set(u"UpdateOffset"_s, 450);
    server_.answerStatus(u"/ch1"_s, 404, "gone");
    for (const QString &call :
         {u"auto remove ch2"_s, u"rename ch0 \"new name\""_s, u"delete ch5"_s})
        ok(call);
    EXPECT_TRUE(update(u"ch1"_s).startsWith(u"never\tnot updated yet\t"_s));
    run(u"update"_s);
    EXPECT_EQ(update(u"new name"_s).section(u'\t', 1, 1), u"3 new articles");
    EXPECT_TRUE(update(u"new name"_s).endsWith(u" 05:07"_s));
    EXPECT_EQ(update(u"ch1"_s).section(u'\t', 0, 1),
              u"never\tEncountering Problem when Reading Feed information (1002)");
    EXPECT_TRUE(update(u"ch2"_s).endsWith(u"\tnot automatic"_s));
    EXPECT_EQ(update(u"ch5"_s), QString());
    EXPECT_EQ(ok(u"auto list"_s).count(u'\n'), 4);
}

TEST_F(AutomaticTest, AFeedThatIsThereTwiceIsTold) {
    ok(u"update"_s);
    addChannel(u"twin"_s, generatedFeed(4, 0)); // and ch0 has three of these
    ok(u"add --create C again " + server_.url(u"/ch4/#top").toUpper());
    EXPECT_EQ(run(u"update C twin"_s).lines(), QStringList(u"ok\t1\t1/1\ttwin"_s));
    const QString lacks = u"articles of its feed that other channels have, as \"ch0\": 3"_s;
    const QString same = u"the same address as \"%1\""_s;
    const std::pair<QString, QString> told[]{
        {u"ch4"_s, same.arg(u"again")}, {u"twin"_s, lacks}, {u"again"_s, same.arg(u"ch4")}};
    QString notes;
    for (const auto &[name, note] : told) {
        EXPECT_EQ(update(name).section(u'\t', 3), note);
        notes += u"note: channel \"%1\": %2\n"_s.arg(name, note);
    }
    EXPECT_EQ(update(u"ch0"_s).count(u'\t'), 2);
    EXPECT_EQ(ok(u"check"_s), notes);
    server_.answerStatus(u"/twin"_s, 404, "gone");
    run(u"update C twin"_s);
    EXPECT_TRUE(update(u"twin"_s).endsWith(lacks)) << "nothing else is known";
    server_.serve(u"/twin"_s, generatedFeed(4, 0));
    ok(u"delete ch0"_s);
    EXPECT_FALSE(ok(u"check"_s).contains(u"twin"));
    EXPECT_EQ(run(u"update C twin"_s).lines(), QStringList(u"ok\t3\t4/4\ttwin"_s));
}

} // namespace
} // namespace tidebrook
