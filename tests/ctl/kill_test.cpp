#include "ctl/ctl_process.h"
#include "feed_server/feed_server.h"
#include "feed_server/generated_feed.h"

#include <QElapsedTimer>
#include <QThread>

#include <gtest/gtest.h>

#include <random>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

constexpr int channelCount = 4;
constexpr int itemsPerRound = 40;

// How many times to kill; TIDEBROOK_KILLS asks for a longer test.
int killCount() {
    const int asked = qEnvironmentVariableIntValue("TIDEBROOK_KILLS");
    return asked > 0 ? asked : 15;
}

class KillTest : public testing::Test {
protected:
    void publish(int round) {
        for (int i = 0; i < channelCount; ++i)
            server_.serve(u"/%1"_s.arg(i), generatedFeed(itemsPerRound, static_cast<quint32>(i),
                                                         round * itemsPerRound / 2));
    }

    void expectSound() {
        const CtlRun check = ctl_.run({u"check"_s});
        EXPECT_EQ(check.exitCode, 0) << (check.out + check.err).toUtf8().constData();
    }

    FeedServer server_;
    CtlProcess ctl_;
};

TEST_F(KillTest, ARefreshKilledAtAnyMomentLeavesASoundStore) {
    publish(0);
    for (int i = 0; i < channelCount; ++i)
        ctl_.run({u"add"_s, u"C"_s, u"ch %1"_s.arg(i), server_.url(u"/%1"_s.arg(i))});
    QElapsedTimer timer;
    timer.start();
    ASSERT_EQ(ctl_.run({u"update"_s}).exitCode, 0);
    const qint64 wholeRun = timer.elapsed();

    std::mt19937 random(2026); // the moments still differ, with the machine's load
    int killed = 0;
    for (int round = 1; round <= killCount(); ++round) {
        publish(round);
        const auto update = ctl_.start({u"update"_s});
        ASSERT_TRUE(update->waitForStarted());
        QThread::msleep(std::uniform_int_distribution<unsigned long>(
            0, static_cast<unsigned long>(wholeRun))(random));
        update->kill();
        ASSERT_TRUE(update->waitForFinished());
        killed += update->exitStatus() == QProcess::CrashExit ? 1 : 0;
        expectSound();
    }
    EXPECT_GT(killed, 0) << "the kills came too late to mean anything";

    EXPECT_EQ(ctl_.run({u"update"_s}).exitCode, 0);
    const QString newest = ctl_.run({u"articles"_s, u"ch 0"_s}).out;
    EXPECT_EQ(ctl_.run({u"update"_s}).lines().first().section(u'\t', 1, 1), u"0");
    EXPECT_EQ(ctl_.run({u"articles"_s, u"ch 0"_s}).out, newest);
    expectSound();
}

TEST_F(KillTest, AFirstStartKilledAtAnyMomentIsMadeGoodByTheNext) {
    const QString root = ctl_.filePath(u"fresh"_s);
    std::mt19937 random(7);
    for (int round = 0; round < killCount(); ++round) {
        const QString home = root + QString::number(round);
        const auto init = ctl_.start({u"--home"_s, home, u"init"_s});
        ASSERT_TRUE(init->waitForStarted());
        QThread::usleep(std::uniform_int_distribution<unsigned long>(0, 25'000)(random));
        init->kill();
        ASSERT_TRUE(init->waitForFinished());
        EXPECT_EQ(ctl_.run({u"--home"_s, home, u"init"_s}).out, u"3 categories, 8 channels\n");
        EXPECT_EQ(ctl_.run({u"--home"_s, home, u"check"_s}).exitCode, 0);
    }
}

} // namespace
} // namespace tidebrook
