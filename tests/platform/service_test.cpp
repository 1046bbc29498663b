#include "platform/pause.h"
#include "platform/process_lock.h"
#include "platform/service.h"
#include "platform/stop_signal.h"
#include "platform/wait_any.h"
#include "support/forked_process.h"
#include "support/text_printing.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <thread>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class ServiceTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(device_.makeFolders()); }

    /// What holds the service's lock, until it is killed or ends by a signal.
    std::unique_ptr<ForkedProcess> startHolder(const std::function<void()> &prepare = [] {}) const {
        const SharedCount held;
        auto holder = std::make_unique<ForkedProcess>([&] {
            prepare();
            const ProcessLock lock(serviceLockPath(device_));
            if (lock.isHeld())
                held.add();
            return pause();
        });
        EXPECT_TRUE(held.wait());
        return holder;
    }

    QTemporaryDir folder_;
    const DeviceRoot device_{folder_.filePath(u"device"_s)};
};

TEST_F(ServiceTest, ALockIsHeldByOneLivingProcessWhichItTells) {
    const QString path = serviceLockPath(device_);
    EXPECT_EQ(ProcessLock::holder(path), std::nullopt);
    const auto other = startHolder();
    EXPECT_EQ(ProcessLock::holder(path), other->id());
    EXPECT_FALSE(ProcessLock(path).isHeld());
    other->kill();
    other->wait();
    EXPECT_EQ(ProcessLock::holder(path), std::nullopt);
    EXPECT_TRUE(ProcessLock(path).isHeld());
    EXPECT_FALSE(ProcessLock(device_.path() + u"/no/such/folder").isHeld());
}

TEST_F(ServiceTest, AskingForItsHolderOrTakingItAgainDoesNotLoseALock) {
    const QString path = serviceLockPath(device_);
    const ProcessLock lock(path);
    ASSERT_TRUE(lock.isHeld());
    EXPECT_EQ(ProcessLock::holder(path), getpid());
    EXPECT_FALSE(ProcessLock(path).isHeld());
    EXPECT_FALSE(ProcessLock(device_.path() + u"/run/../run/feedlarkd.lock").isHeld());
    const pid_t self = getpid();
    ForkedProcess child([&] {
        const bool isRefused = !ProcessLock(path).isHeld();
        return isRefused && ProcessLock::holder(path) == self ? 0 : 1;
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(ServiceTest, StoppingWaitsForTheEndOfTheService) {
    EXPECT_TRUE(stopService(device_, 0ms)) << "there is none";
    const auto obedient = startHolder();
    EXPECT_TRUE(stopService(device_, 20s));
    EXPECT_EQ(obedient->wait(), -1) << "ended by the signal";
    const auto deaf = startHolder([] { std::signal(SIGTERM, SIG_IGN); });
    EXPECT_FALSE(stopService(device_, 50ms));
    EXPECT_EQ(runningService(device_), deaf->id());
}

StopSignal *signalledStop = nullptr;

TEST(StopSignal, RaisedInASignalHandlerItEndsEveryWaitAndPause) {
    StopSignal stop;
    const auto isReadable = [&] {
        return WaitAny({}, stop.descriptor(), 0ms).kind == WaitResult::Kind::Input;
    };
    EXPECT_FALSE(stop.wait(1ms) || isReadable());
    setPauseScale(100);
    EXPECT_TRUE(Pause(1, &stop));
    std::thread waiting([&] { EXPECT_TRUE(stop.wait(60s)); });
    std::thread pausing([&] { EXPECT_FALSE(Pause(60'000, &stop)); });
    signalledStop = &stop;
    const auto before = std::signal(SIGUSR1, [](int) { signalledStop->raise(); });
    QElapsedTimer timer;
    timer.start();
    std::raise(SIGUSR1);
    waiting.join();
    pausing.join();
    EXPECT_LT(timer.elapsed(), 30'000);
    std::signal(SIGUSR1, before);
    EXPECT_TRUE(stop.wait(60s) && isReadable()) << "it stays raised";
    setPauseScale(0);
    EXPECT_FALSE(Pause(60'000, &stop)) << "also when there is nothing to pause";
}

} // namespace
} // namespace tidebrook
