#include "feed_server/generated_feed.h"
#include "platform/desktop/service.h"
#include "service/running_service.h"

#include <QElapsedTimer>
#include <QThread>

#include <csignal>
#include <random>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

constexpr int channelCount = 4;

/// The service, a requester and an updater at work on one device, each killed now and then.
class ChaosTest : public RunningService {
protected:
    void publish(int round) {
        for (int i = 0; i < channelCount; ++i)
            server_.serve(u"/ch%1"_s.arg(i),
                          generatedFeed(30, static_cast<quint32>(i), round * 10));
    }

    void live() {
        keepGoing(requester_, requests_, u"request C ch%1 --timeout 5"_s.arg(random(channelCount)));
        keepGoing(updater_, updates_, u"update --jobs 2"_s);
        QThread::msleep(static_cast<unsigned long>(random(60)));
        const int victim = random(9);
        if (victim == 0)
            requester_->kill();
        else if (victim == 1)
            updater_->kill();
        else if (const auto service = runningService(root_); victim == 2 && service)
            serviceKills_ += kill(*service, SIGKILL) == 0 ? 1 : 0;
    }

    int random(int limit) { return std::uniform_int_distribution(0, limit - 1)(random_); }

    int requests_ = 0; // done
    int updates_ = 0;
    int kills_ = 0;
    int serviceKills_ = 0;
    std::unique_ptr<QProcess> requester_;
    std::unique_ptr<QProcess> updater_;

private:
    // Starts it, again when it has ended.
    void keepGoing(std::unique_ptr<QProcess> &process, int &dones, const QString &command) {
        if (process && !process->waitForFinished(0) && process->state() != QProcess::NotRunning)
            return;
        if (process && process->exitStatus() == QProcess::CrashExit)
            ++kills_;
        else if (process && process->exitCode() == 0)
            ++dones;
        process = start(command);
        process->waitForStarted();
    }

    std::mt19937 random_{2026}; // the moments differ all the same, with the machine's load
};

TEST_F(ChaosTest, NothingIsLostOrStuckWhoeverIsKilled) {
    for (int i = 0; i < channelCount; ++i)
        addChannel(u"ch%1"_s.arg(i));
    publish(0);
    const int seconds = qEnvironmentVariable("TIDEBROOK_CHAOS", u"3"_s).toInt();
    QElapsedTimer timer;
    timer.start();
    for (int round = 1; timer.elapsed() < seconds * 1000; ++round) {
        publish(round);
        for (int i = 0; i < 20; ++i)
            live();
    }
    for (const auto &process : {requester_.get(), updater_.get()}) {
        process->kill();
        process->waitForFinished();
    }
    EXPECT_GT(requests_, 0);
    EXPECT_GT(updates_, 0);
    EXPECT_GT(kills_, 0);
    EXPECT_GT(serviceKills_, 0);

    run(u"service stop"_s);
    publish(100'000);
    EXPECT_EQ(ok(u"request C ch0"_s), u"done\n");
    ok(u"update"_s);
    ok(u"add --create D new " + server_.url(u"/ch0"));
    ok(u"auto add new"_s);
    expectSound();
}

} // namespace
} // namespace tidebrook
