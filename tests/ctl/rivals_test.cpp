#include "ctl/ctl_process.h"
#include "feed_server/feed_server.h"
#include "feed_server/generated_feed.h"

#include <QElapsedTimer>
#include <QThread>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

/// Several commands at once on one device.
class RivalsTest : public testing::Test {
protected:
    /// Runs all of them at the same time and returns their exit codes.
    QList<int> together(const QList<QStringList> &calls) {
        std::vector<std::unique_ptr<QProcess>> processes;
        for (const QStringList &call : calls)
            processes.push_back(ctl_.start(call));
        QList<int> codes;
        for (const auto &process : processes) {
            process->waitForFinished(60'000);
            codes.append(process->exitCode());
        }
        return codes;
    }

    void expectSound() {
        const CtlRun check = ctl_.run({u"check"_s});
        EXPECT_EQ(check.exitCode, 0) << (check.out + check.err).toUtf8().constData();
    }

    void waitForRequests(qsizetype count) {
        QElapsedTimer timer;
        timer.start();
        while (server_.requests().size() < count && timer.elapsed() < 20'000)
            QThread::msleep(5);
        ASSERT_EQ(server_.requests().size(), count);
    }

    FeedServer server_;
    CtlProcess ctl_;
};

TEST_F(RivalsTest, FirstStartsAtTheSameTimeMakeOneDevice) {
    for (int round = 0; round < 3; ++round) {
        const QStringList init{u"--home"_s, ctl_.filePath(u"fresh%1"_s.arg(round)), u"init"_s};
        EXPECT_EQ(together(QList<QStringList>(8, init)), QList<int>(8, 0));
        EXPECT_EQ(ctl_.run(init).out, u"3 categories, 8 channels\n");
        EXPECT_EQ(ctl_.run({init[0], init[1], u"check"_s}).out, u"");
    }
}

TEST_F(RivalsTest, WhatIsStoredIsNeverToldToHaveFailed) {
    for (int round = 0; round < 4; ++round) {
        QList<QStringList> calls;
        for (int i = 0; i < 5; ++i) {
            calls.append({u"setting"_s, u"FontSize"_s, QString::number(i)});
            calls.append({u"add-category"_s, u"C %1 %2"_s.arg(round).arg(i)});
        }
        EXPECT_EQ(together(calls), QList<int>(10, 0));
    }
    EXPECT_EQ(ctl_.run({u"categories"_s}).lines().size(), 20);
    expectSound();
}

TEST_F(RivalsTest, NamesThatTwoWantGoToOneOfThem) {
    for (int round = 0; round < 5; ++round) {
        const QString a = u"A%1"_s.arg(round);
        const QString b = u"B%1"_s.arg(round);
        const QString c = u"C%1"_s.arg(round);
        ctl_.run({u"add"_s, a, a + u" one", u"http://127.0.0.1:1/"_s});
        ctl_.run({u"add"_s, b, b + u" one", u"http://127.0.0.1:1/"_s});
        const QList<int> codes = together({{u"rename-category"_s, a, c},
                                           {u"rename-category"_s, b, c},
                                           {u"rename"_s, a + u" one", c},
                                           {u"rename"_s, b + u" one", c},
                                           {u"channels"_s}});
        EXPECT_EQ(codes[0] + codes[1], 1);
        EXPECT_EQ(codes[2] + codes[3], 1);
        expectSound();
    }
    EXPECT_EQ(ctl_.run({u"channels"_s}).lines().size(), 10);
}

TEST_F(RivalsTest, ChannelsThatChangeWhileTheirFeedIsOnItsWayStayWhole) {
    const QStringList names{u"gone"_s, u"renamed"_s, u"moved"_s};
    for (int i = 0; i < 3; ++i) {
        server_.serve(u"/%1"_s.arg(i), generatedFeed(5, static_cast<quint32>(i)));
        ctl_.run({u"add"_s, u"A"_s, names[i], server_.url(u"/%1"_s.arg(i))});
    }
    ctl_.run({u"add-category"_s, u"B"_s});
    for (const QStringList &update :
         QList<QStringList>{{u"update"_s}, {u"update"_s, u"B"_s, u"--pauses"_s}}) {
        server_.clearRequests();
        server_.setDelay(std::chrono::milliseconds(700));
        const auto process = ctl_.start(update);
        const bool isFirst = update.size() == 1;
        waitForRequests(isFirst ? 3 : 1);
        ctl_.run({u"delete"_s, isFirst ? u"gone"_s : u"new name"_s});
        ctl_.run({u"rename"_s, u"renamed"_s, u"new name"_s});
        ctl_.run({u"move"_s, u"moved"_s, isFirst ? u"B"_s : u"A"_s});
        process->waitForFinished();
        server_.setDelay(std::chrono::milliseconds(0));
        expectSound();
    }
    // Nothing of the deleted channel is left to stand in the way of a new one.
    ctl_.run({u"add"_s, u"A"_s, u"again"_s, server_.url(u"/0")});
    EXPECT_EQ(ctl_.run({u"update"_s, u"A"_s, u"again"_s}).out, u"ok\t5\t5/5\tagain\n");
    expectSound();
}

} // namespace
} // namespace tidebrook
