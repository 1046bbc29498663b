#include "platform/sync/named_event.h"
#include "platform/sync/named_mutex.h"
#include "platform/sync/wait_any.h"
#include "support/device_folders.h"
#include "support/forked_process.h"
#include "test_device/test_device.h"

#include <QElapsedTimer>
#include <QFile>

#include <gtest/gtest.h>

#include <sched.h>

#include <thread>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

using Kind = WaitResult::Kind;
using Reset = NamedEvent::Reset;

class NamedEventTest : public DeviceFolders {};

TEST_F(NamedEventTest, IsSetForAnotherProcessAsItsKindHasIt) {
    for (const Reset reset : {Reset::Manual, Reset::Auto}) {
        const bool isManual = reset == Reset::Manual;
        const QString name = isManual ? u"manual"_s : u"auto"_s;
        NamedEvent event(device_, name, reset);
        ASSERT_TRUE(event.isOpen());
        EXPECT_FALSE(event.test());
        ForkedProcess setter([&] {
            NamedEvent same(device_, name, reset);
            return same.set() && same.set() ? 0 : 1;
        });
        EXPECT_EQ(setter.wait(), 0);
        EXPECT_EQ(WaitAny({&event}, -1, 20s).index, 0);
        EXPECT_EQ(event.test(), isManual);
        EXPECT_EQ(NamedEvent(device_, name, reset).test(), isManual);
        event.reset();
        EXPECT_EQ(WaitAny({&event}, -1, 0s).kind, Kind::TimedOut);
    }
    NamedEvent(device_, u"manual", Reset::Manual).set();
    EXPECT_FALSE(NamedEvent(device_, u"manual", Reset::Manual).test()) << "nobody held it open";
}

TEST_F(NamedEventTest, OneOfManyWaitingProcessesTakesAnAutoResetEvent) {
    NamedEvent event(device_, u"event", Reset::Auto);
    const SharedCount taken;
    const ForkedProcesses waiters = forkProcesses(4, [&] {
        NamedEvent own(device_, u"event", Reset::Auto);
        while (WaitAny({&own}, -1, 40s).kind == Kind::Event)
            taken.add();
        return 1;
    });
    for (int round = 0; round < 300; ++round) {
        ASSERT_TRUE(event.set());
        ASSERT_EQ(taken.take(), 1U) << "in round " << round;
    }
}

class NamedMutexTest : public DeviceFolders {
protected:
    QString path() const { return device_.path() + u"/run/mutex.mutex"; }

    /// The exit code of another process that tries to lock the mutex and unlocks it: 0 when it
    /// had it, 1 when it did not, 2 when what it did not have could be unlocked.
    int tryElsewhere(std::chrono::milliseconds timeout) const {
        ForkedProcess other([&] {
            NamedMutex mutex(device_, u"mutex");
            const bool isLocked = mutex.lock(timeout);
            return mutex.unlock() == isLocked ? (isLocked ? 0 : 1) : 2;
        });
        return other.wait();
    }
};

TEST_F(NamedMutexTest, KeepsOthersOutUntilItIsUnlockedAsOftenAsLocked) {
    NamedMutex mutex(device_, u"mutex");
    ASSERT_TRUE(mutex.isOpen());
    ASSERT_TRUE(mutex.lock(0ms) && mutex.lock(0ms));
    EXPECT_EQ(tryElsewhere(0ms), 1);
    std::thread([&] { EXPECT_FALSE(mutex.lock(10ms) || mutex.unlock()); }).join();
    EXPECT_TRUE(mutex.unlock());
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(tryElsewhere(100ms), 1);
    EXPECT_GE(timer.elapsed(), 100);
    EXPECT_TRUE(mutex.unlock());
    EXPECT_FALSE(mutex.unlock());
    NamedMutex(device_, u"mutex").lock(0ms); // which ends with its object
    EXPECT_EQ(tryElsewhere(0ms), 0);
}

TEST_F(NamedMutexTest, GoesToTheNextWhenItsHolderIsKilled) {
    NamedMutex mutex(device_, u"mutex");
    const auto holder = startStaying([&](const auto &stay) {
        NamedMutex own(device_, u"mutex");
        if (own.lock(20s) && own.lock(20s))
            stay();
    });
    EXPECT_FALSE(mutex.lock(0ms));
    std::thread killer([&] { holder->kill(); });
    EXPECT_TRUE(mutex.lock(20s)) << "waiting while the holder dies";
    killer.join();
    EXPECT_TRUE(mutex.unlock());
    EXPECT_FALSE(mutex.unlock());
    EXPECT_EQ(tryElsewhere(0ms), 0);
}

TEST_F(NamedMutexTest, AFileLeftByACrashedOrInterruptedMachineIsBegunAnew) {
    QByteArray leftLocked;
    {
        NamedMutex mutex(device_, u"mutex");
        ASSERT_TRUE(mutex.lock(0ms));
        leftLocked = contentOf(path());
    }
    for (const QByteArray &content :
         {leftLocked, leftLocked.left(10), QByteArray(leftLocked.size(), '\xFF'), QByteArray()}) {
        ASSERT_TRUE(writeFile(path(), content));
        EXPECT_EQ(tryElsewhere(0ms), 0) << content.left(12).toHex().constData();
    }
}

TEST_F(NamedMutexTest, FirstOpenersAtTheSameTimeShareOneMutex) {
    for (int round = 0; round < 25; ++round) {
        QFile::remove(path());
        const SharedCount start;
        const SharedCount inside;
        const ForkedProcesses openers = forkProcesses(4, [&] {
            start.wait();
            NamedMutex mutex(device_, u"mutex");
            for (int i = 0; i < 20; ++i) {
                if (!mutex.lock(20s))
                    return 1;
                inside.add();
                sched_yield();
                if (inside.take() != 1)
                    return 2;
                mutex.unlock();
            }
            return 0;
        });
        start.add();
        for (const auto &opener : openers)
            ASSERT_EQ(opener->wait(), 0) << "in round " << round;
    }
}

} // namespace
} // namespace tidebrook
