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

struct KillCase {
    const char *what;
    QStringList command;
    QStringList nextCommand; // of every second round
};

class KilledCommand : public KillTest, public testing::WithParamInterface<KillCase> {};

TEST_P(KilledCommand, AtAnyMomentLeavesASoundStore) {
    publish(0);
    for (int i = 0; i < channelCount; ++i)
        ctl_.run({u"add"_s, u"C"_s, u"ch %1"_s.arg(i), server_.url(u"/%1"_s.arg(i))});
    ASSERT_EQ(ctl_.run({u"update"_s}).exitCode, 0);
    publish(1);
    QElapsedTimer timer;
    timer.start();
    ASSERT_EQ(ctl_.run(GetParam().command).exitCode, 0);
    const qint64 wholeRun = timer.nsecsElapsed() / 1000;

    std::mt19937 random(2026); // the moments still differ, with the machine's load
    int killed = 0;
    for (int round = 2; round < 2 + killCount(); ++round) {
        publish(round);
        const auto command =
            ctl_.start(round % 2 == 0 ? GetParam().nextCommand : GetParam().command);
        ASSERT_TRUE(command->waitForStarted());
        QThread::usleep(std::uniform_int_distribution<unsigned long>(
            0, static_cast<unsigned long>(wholeRun))(random));
        command->kill();
        ASSERT_TRUE(command->waitForFinished());
        killed += command->exitStatus() == QProcess::CrashExit ? 1 : 0;
        expectSound();
        EXPECT_EQ(ctl_.run({u"channels"_s}).lines().size(), channelCount);
    }
    EXPECT_GT(killed, 0) << "the kills came too late to mean anything";

    EXPECT_EQ(ctl_.run({u"update"_s}).exitCode, 0);
    const QString newest = ctl_.run({u"articles"_s, u"ch 0"_s}).out;
    EXPECT_EQ(ctl_.run({u"update"_s}).lines().first().section(u'\t', 1, 1), u"0");
    EXPECT_EQ(ctl_.run({u"articles"_s, u"ch 0"_s}).out, newest);
    expectSound();
}

INSTANTIATE_TEST_SUITE_P(All, KilledCommand,
                         testing::Values(KillCase{"Update", {u"update"_s}, {u"update"_s}},
                                         KillCase{"UpdateAsForTheScreens",
                                                  {u"update"_s, u"--pauses"_s},
                                                  {u"update"_s, u"--pauses"_s}},
                                         KillCase{"RenameCategory",
                                                  {u"rename-category"_s, u"C"_s, u"D"_s},
                                                  {u"rename-category"_s, u"D"_s, u"C"_s}}),
                         [](const auto &test) { return std::string(test.param.what); });

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
