#include "platform/named_mutex.h"
#include "support/forked_process.h"
#include "support/text_printing.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <sched.h>

#include <thread>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class NamedMutexTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(device_.makeFolders()); }

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

    QTemporaryDir folder_;
    const DeviceRoot device_{folder_.filePath(u"device"_s)};
};

TEST_F(NamedMutexTest, KeepsOtherProcessesOutUntilItIsUnlockedAsOftenAsLocked) {
    NamedMutex mutex(device_, u"mutex");
    ASSERT_TRUE(mutex.isOpen());
    ASSERT_TRUE(mutex.lock(0ms) && mutex.lock(0ms));
    EXPECT_EQ(tryElsewhere(0ms), 1);
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

TEST_F(NamedMutexTest, ThreadsOfOneProcessExcludeEachOther) {
    NamedMutex mutex(device_, u"mutex");
    int count = 0;
    const auto work = [&] {
        for (int i = 0; i < 1000; ++i) {
            EXPECT_TRUE(mutex.lock(20s));
            ++count;
            EXPECT_TRUE(mutex.unlock());
        }
    };
    ASSERT_TRUE(mutex.lock(0ms));
    std::thread one([&] { EXPECT_FALSE(mutex.lock(10ms) || mutex.unlock()); });
    one.join();
    ASSERT_TRUE(mutex.unlock());
    std::thread two(work);
    work();
    two.join();
    EXPECT_EQ(count, 2000);
}

TEST_F(NamedMutexTest, GoesToTheNextWhenItsHolderIsKilled) {
    NamedMutex mutex(device_, u"mutex");
    const SharedCount locked;
    ForkedProcess holder([&] {
        NamedMutex own(device_, u"mutex");
        if (own.lock(20s) && own.lock(20s))
            locked.add();
        return pause();
    });
    ASSERT_TRUE(locked.wait());
    EXPECT_FALSE(mutex.lock(0ms));
    std::thread killer([&] { holder.kill(); });
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
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        leftLocked = file.readAll();
    }
    for (const QByteArray &content :
         {leftLocked, leftLocked.left(10), QByteArray(leftLocked.size(), '\xFF'), QByteArray()}) {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
        file.close();
        EXPECT_EQ(tryElsewhere(0ms), 0) << content.left(12).toHex().constData();
    }
}

TEST_F(NamedMutexTest, FirstOpenersAtTheSameTimeShareOneMutex) {
    auto *count = static_cast<volatile int *>(
        mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    for (int round = 0; round < 25; ++round) {
        QFile::remove(path());
        *count = 0;
        const SharedCount start;
        ForkedProcesses openers = forkProcesses(4, [&] {
            start.wait();
            NamedMutex mutex(device_, u"mutex");
            for (int i = 0; i < 20; ++i) {
                if (!mutex.lock(20s))
                    return 1;
                const int before = *count;
                sched_yield();
                *count = before + 1;
                if (!mutex.unlock())
                    return 2;
            }
            return 0;
        });
        start.add();
        for (const auto &opener : openers)
            EXPECT_EQ(opener->wait(), 0);
        ASSERT_EQ(*count, 80) << "in round " << round;
    }
    munmap(const_cast<int *>(count), sizeof(int));
}

} // namespace
} // namespace tidebrook
