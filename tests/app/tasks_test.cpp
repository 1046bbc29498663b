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

int waitForStop(const StopSignal &stop) { return stop.wait(20s) ? 1 : 2; }
int answer(const StopSignal &) { return 3; }

TEST(TasksTest, ConcurrentOnesAreToldUnlessTheyAreCalledOffOrNobodyIsThere) {
    Tasks tasks(Tasks::Concurrent);
    int running = 0;
    QObject::connect(&tasks, &Tasks::begun, &tasks, [&] { ++running; });
    QObject::connect(&tasks, &Tasks::done, &tasks, [&] { --running; });
    QList<int> told;
    const auto tell = [&told](int result) { told.append(result); };
    QObject receiver;
    auto gone = std::make_unique<QObject>();
    const auto calledOff = tasks.run(&receiver, waitForStop, tell);
    ASSERT_TRUE(calledOff);
    calledOff->raise();
    ASSERT_TRUE(tasks.run(gone.get(), answer, tell));
    gone.reset();
    ASSERT_TRUE(tasks.run(&receiver, answer, tell));
    EXPECT_TRUE(QTest::qWaitFor([&] { return running == 0; }, patienceLimit));
    EXPECT_EQ(told, QList<int>{3});

    std::atomic<int> ended = 0;
    const auto work = [&ended](const StopSignal &stop) { return ended += waitForStop(stop); };
    ASSERT_TRUE(tasks.run(&receiver, work, tell) && tasks.run(&receiver, work, tell));
    tasks.finish();
    EXPECT_EQ(ended, 2) << "each is called off, and waited for";
    EXPECT_FALSE(tasks.run(&receiver, answer, tell));
    QCoreApplication::processEvents();
    EXPECT_EQ(told, QList<int>{3});
}

} // namespace
} // namespace tidebrook
