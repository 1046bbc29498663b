#include "platform/sync/tasks.h"
#include "support/no_threads.h"
#include "support/waiting.h"

#include <QTest>

#include <gtest/gtest.h>

#include <atomic>
#include <numeric>

namespace tidebrook {
namespace {

using namespace std::chrono_literals;

TEST(TasksTest, SerialOnesAreAllDoneInOrderAndToldToWhoIsStillThere) {
    Tasks queue(Tasks::Serial);
    QObject screen;
    auto gone = std::make_unique<QObject>();
    std::vector<int> expected(100);
    std::iota(expected.begin(), expected.end(), 0);
    std::vector<int> done; // by the queue's thread
    std::vector<int> told;
    const auto ask = [&](QObject &receiver, int number) {
        return queue.ask(
            &receiver, [&done, number] { return done.emplace_back(number); },
            [&told](int result) { told.push_back(result); });
    };
    {
        const NoThreads noThreads;
        EXPECT_FALSE(ask(screen, 0)) << "there is no thread, which the next may have";
    }
    ASSERT_TRUE(ask(*gone, -1));
    gone.reset();
    for (const int number : expected)
        ASSERT_TRUE(ask(screen, number));
    EXPECT_TRUE(QTest::qWaitFor([&] { return told.size() == expected.size(); }, patienceLimit));
    EXPECT_EQ(told, expected);
    ASSERT_TRUE(ask(screen, 100));
    queue.finish();
    EXPECT_FALSE(ask(screen, 101));
    QCoreApplication::processEvents();
    EXPECT_EQ(told, expected) << "the end waits for what was given, and tells no more";
    expected.insert(expected.begin(), -1);
    expected.push_back(100);
    EXPECT_EQ(done, expected);
}

TEST(TasksTest, ConcurrentOnesAreCalledOffAtTheEndAndWaitedFor) {
    Tasks tasks(Tasks::Concurrent);
    QObject receiver;
    std::atomic<int> stopped = 0;
    const auto work = [&](const StopSignal &stop) { return stopped += stop.wait(20s) ? 1 : 0; };
    const auto tell = [](int) { ADD_FAILURE(); };
    ASSERT_TRUE(tasks.run(&receiver, work, tell) && tasks.run(&receiver, work, tell));
    tasks.finish();
    QCoreApplication::processEvents();
    EXPECT_EQ(stopped, 2);
    EXPECT_FALSE(tasks.run(&receiver, work, tell));
}

} // namespace
} // namespace tidebrook
