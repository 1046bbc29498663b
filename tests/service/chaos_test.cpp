#include "feed_server/generated_feed.h"
#include "platform/service.h"
#include "service/running_service.h"

#include <QElapsedTimer>
#include <QThread>

#include <csignal>
#include <iostream>
#include <random>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

constexpr int channelCount = 4;

// How long; TIDEBROOK_CHAOS asks for a longer test, in seconds.
int chaosSeconds() {
    const int asked = qEnvironmentVariableIntValue("TIDEBROOK_CHAOS");
    return asked > 0 ? asked : 3;
}

/// The service, a requester and an updater at work on one device, each killed now and then.
class ChaosTest : public RunningService {
protected:
    void publish(int round) {
        for (int i = 0; i < channelCount; ++i)
            server_.serve(u"/ch%1"_s.arg(i),
                          generatedFeed(30, static_cast<quint32>(i), round * 10));
    }

    void live() {
        keepGoing(requester_, u"request C ch%1 --timeout 5"_s.arg(random(channelCount)));
        keepGoing(updater_, u"update --jobs 2"_s);
        QThread::msleep(static_cast<unsigned long>(random(60)));
        if (random(3) == 0)
            killOne();
    }

    void killOne() {
        const std::optional<pid_t> service = runningService(root_);
        const int victim = random(3);
        if (victim < 2)
            (victim == 0 ? requester_ : updater_)->kill();
        else if (service)
            serviceKills_ += kill(*service, SIGKILL) == 0 ? 1 : 0;
    }

    int random(int limit) { return std::uniform_int_distribution(0, limit - 1)(random_); }

    int dones_ = 0;
    int updates_ = 0;
    int kills_ = 0;
    int serviceKills_ = 0;
    std::unique_ptr<QProcess> requester_;
    std::unique_ptr<QProcess> updater_;

private:
    // Starts it, again when it has ended.
    void keepGoing(std::unique_ptr<QProcess> &process, const QString &command) {
        if (process && !process->waitForFinished(0) && process->state() != QProcess::NotRunning)
            return;
        if (process) {
            const bool isDone =
                process->exitStatus() == QProcess::NormalExit && process->exitCode() == 0;
            kills_ += process->exitStatus() == QProcess::CrashExit ? 1 : 0;
            (&process == &requester_ ? dones_ : updates_) += isDone ? 1 : 0;
        }
        process = start(command);
        process->waitForStarted();
    }

    std::mt19937 random_{2026}; // the moments differ all the same, with the machine's load
};

TEST_F(ChaosTest, NothingIsLostOrStuckWhoeverIsKilled) {
    for (int i = 0; i < channelCount; ++i)
        addChannel(u"ch%1"_s.arg(i));
    publish(0);
    QElapsedTimer timer;
    timer.start();
    qint64 soundAt = 0;
    for (int round = 1; timer.elapsed() < chaosSeconds() * 1000; ++round) {
        publish(round);
        for (int i = 0; i < 20; ++i)
            live();
        if (timer.elapsed() - soundAt > 30'000) {
            expectSound();
            soundAt = timer.elapsed();
        }
    }
    for (const auto &process : {requester_.get(), updater_.get()}) {
        process->kill();
        process->waitForFinished();
    }
    std::cout << dones_ << " requests done, " << updates_ << " updates done, " << kills_
              << " commands and " << serviceKills_ << " services killed\n";
    EXPECT_GT(dones_, 0);
    EXPECT_GT(updates_, 0);
    EXPECT_GT(kills_, 0);
    EXPECT_GT(serviceKills_, 0);

    run(u"service stop"_s);
    publish(100'000);
    EXPECT_EQ(ok(u"request C ch0"_s), u"done\n");
    ok(u"update"_s);
    ok(u"add D new " + server_.url(u"/ch0"));
    ok(u"auto add new"_s);
    expectSound();
}

} // namespace
} // namespace tidebrook
