#include "feed_server/generated_feed.h"
#include "platform/service.h"
#include "service/running_service.h"
#include "store/settings_store.h"
#include "update/auto_schedule.h"

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
            server_.serve(u'/' + name, generatedFeed(3, static_cast<quint32>(i)));
            addChannel(name);
            EXPECT_EQ(ctl_.run({u"auto"_s, u"add"_s, name}).exitCode, 0);
        }
        set(u"UpdateInterval"_s, 1);
    }

    void set(const QString &name, qint64 value) {
        EXPECT_EQ(ctl_.run({u"setting"_s, name, QString::number(value)}).exitCode, 0);
    }

    /// What is told of a channel's updates.
    QString update(const QString &channel) {
        for (const QString &line : ctl_.run({u"updates"_s}).lines()) {
            if (line.section(u'\t', 0, 0) == channel)
                return line.section(u'\t', 1);
        }
        return {};
    }

    void waitForRound() {
        waitFor([this] { return ctl_.run({u"setting"_s, u"LastAutoUpdate"_s}).exitCode == 0; });
    }
};

TEST_F(AutomaticTest, ARoundThatIsDueIsRunOnceWhateverIsRestarted) {
    start();
    EXPECT_EQ(end(SIGTERM), 0);
    EXPECT_EQ(server_.requests().size(), 0) << "automatic updates are switched off";
    set(u"UpdateMode"_s, 1);
    start();
    waitForRound();
    EXPECT_EQ(server_.requests().size(), 6);
    EXPECT_EQ(ctl_.run({u"channels"_s}).out.count(u"3/3"_s), 6);
    EXPECT_EQ(ctl_.run({u"setting"_s, u"UnreadItems"_s, u"--today"_s}).out, u"18\n");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(end(SIGTERM), 0);
        start();
    }
    EXPECT_EQ(end(SIGTERM), 0);
    EXPECT_EQ(server_.requests().size(), 6);
    expectSound();
}

TEST_F(AutomaticTest, ARoundThatIsCutOffGoesOnWhereItWas) {
    bool isFirst = true;
    for (const int signal : {SIGTERM, SIGKILL, SIGTERM}) {
        // The first time, there has been no round yet.
        const qint64 due = isFirst ? 0 : QDateTime::currentSecsSinceEpoch() - 1800;
        if (!isFirst)
            set(u"LastAutoUpdate"_s, due);
        isFirst = false;
        set(u"UpdateMode"_s, 1);
        server_.hang(u"/ch3"_s);
        server_.clearRequests();
        start();
        waitFor([this] { return server_.requests().size() == 4; });
        EXPECT_EQ(end(signal), signal == SIGTERM ? 0 : -1);
        server_.serve(u"/ch3"_s, generatedFeed(3, 3));
        server_.clearRequests();
        start();
        waitFor([&] {
            return ctl_.run({u"setting"_s, u"LastAutoUpdate"_s}).out.toLongLong() > due;
        });
        EXPECT_EQ(server_.requests().size(), 3);
        EXPECT_EQ(ctl_.run({u"channels"_s}).out.count(u"3/3"_s), 6);
        EXPECT_EQ(end(SIGTERM), 0);
        QFile::remove(root_.filePath(u"UpdateState.db"));
        expectSound();
    }
}

TEST_F(AutomaticTest, ManyStartedAtOnceBecomeOne) {
    set(u"UpdateMode"_s, 1);
    std::vector<std::unique_ptr<QProcess>> starters(6);
    for (auto &starter : starters)
        starter = ctl_.start({u"service"_s, u"start"_s});
    for (const auto &starter : starters) {
        starter->waitForFinished();
        EXPECT_EQ(starter->exitCode(), 0);
    }
    waitForRound();
    EXPECT_EQ(server_.requests().size(), 6);
    EXPECT_TRUE(ctl_.run({u"service"_s, u"status"_s}).out.startsWith(u"running"_s));
    EXPECT_EQ(ctl_.run({u"service"_s, u"stop"_s}).exitCode, 0);
    const CtlRun status = ctl_.run({u"service"_s, u"status"_s});
    EXPECT_EQ(status.out, u"not running\n");
    EXPECT_EQ(status.exitCode, 1);
}

TEST_F(AutomaticTest, WhatBecameOfUpdatesIsTold) {
    set(u"UpdateMode"_s, 2);
    set(u"UpdateTime"_s, 5);
    server_.answerStatus(u"/ch1"_s, 404, "gone");
    ctl_.run({u"auto"_s, u"remove"_s, u"ch2"_s});
    ctl_.run({u"rename"_s, u"ch0"_s, u"new name"_s});
    ctl_.run({u"delete"_s, u"ch5"_s});
    EXPECT_TRUE(update(u"ch1"_s).startsWith(u"never\tnot updated yet\t"_s));
    ctl_.run({u"update"_s});
    EXPECT_EQ(update(u"new name"_s).section(u'\t', 1, 1), u"3 new articles");
    EXPECT_TRUE(update(u"new name"_s).endsWith(u" 05:00"_s));
    EXPECT_EQ(update(u"ch1"_s).section(u'\t', 0, 1),
              u"never\tEncountering Problem when Reading Feed information (1002)");
    EXPECT_TRUE(update(u"ch2"_s).endsWith(u"\tnot automatic"_s));
    EXPECT_EQ(update(u"ch5"_s), QString());
    EXPECT_EQ(ctl_.run({u"auto"_s, u"list"_s}).lines().size(), 4);
}

} // namespace
} // namespace tidebrook
