#include "ctl/ctl_process.h"
#include "feed_server/generated_feed.h"

#include <QElapsedTimer>
#include <QThread>

#include <random>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

constexpr int channelCount = 4;
constexpr int itemsPerRound = 40;

// How many times to kill.
int killCount() { return qEnvironmentVariable("TIDEBROOK_KILLS", u"15"_s).toInt(); }

class KillTest : public CtlTest {
protected:
    void publish(int round) {
        for (int i = 0; i < channelCount; ++i)
            server_.serve(u"/ch%1"_s.arg(i), generatedFeed(itemsPerRound, static_cast<quint32>(i),
                                                           round * itemsPerRound / 2));
    }

    /// Kills a command within `longest` microseconds. Whether it was still at work.
    bool killed(const QString &command, qint64 longest) {
        const auto process = start(command);
        EXPECT_TRUE(process->waitForStarted());
        QThread::usleep(
            static_cast<unsigned long>(std::uniform_int_distribution<qint64>(0, longest)(random_)));
        process->kill();
        EXPECT_TRUE(process->waitForFinished());
        return process->exitStatus() == QProcess::CrashExit;
    }

private:
    std::mt19937 random_{2026}; // the moments still differ, with the machine's load
};

TEST_F(KillTest, AnyMomentLeavesASoundStore) {
    publish(0);
    for (int i = 0; i < channelCount; ++i)
        addChannel(u"ch%1"_s.arg(i));
    ok(u"auto add ch1"_s);
    int round = 0;
    for (const QStringList &commands :
         {QStringList{u"update"_s, u"update"_s},
          QStringList{u"update --pauses"_s, u"update --pauses"_s},
          QStringList{u"rename-category C D"_s, u"rename-category D C"_s},
          QStringList{u"rename ch1 new"_s, u"rename new ch1"_s}}) {
        SCOPED_TRACE(commands.first().toStdString());
        publish(++round);
        QElapsedTimer timer;
        timer.start();
        ok(commands[0]);
        const qint64 wholeRun = timer.nsecsElapsed() / 1000;
        ok(commands[1]);
        int kills = 0;
        for (int i = 0; i < 1 + killCount() / 2; ++i) {
            publish(++round);
            kills += killed(commands[i % 2], wholeRun) ? 1 : 0;
            expectSound();
            EXPECT_EQ(ok(u"channels"_s).count(u'\n'), channelCount);
        }
        EXPECT_GT(kills, 0) << "the kills came too late to mean anything";
    }
    const QString name = ok(u"channels"_s).contains(u"\tnew\t") ? u"new\t"_s : u"ch1\t"_s;
    EXPECT_TRUE(ok(u"auto list"_s).contains(name)) << "the renamed channel is updated no more";
    ok(u"update"_s);
    const QString newest = ok(u"articles ch0"_s);
    EXPECT_EQ(ok(u"update"_s).section(u'\t', 1, 1), u"0");
    EXPECT_EQ(ok(u"articles ch0"_s), newest);
    expectSound();
}

TEST_F(KillTest, AFirstStartKilledAtAnyMomentIsMadeGoodByTheNext) {
    for (int round = 0; round < killCount(); ++round) {
        const QString home = u"--home %1 "_s.arg(filePath(u"fresh%1"_s.arg(round)));
        killed(home + u"init", 25'000);
        EXPECT_TRUE(ok(home + u"init").startsWith(u"3 categories, 8 channels\t"));
        ok(home + u"check");
    }
}

} // namespace
} // namespace tidebrook
