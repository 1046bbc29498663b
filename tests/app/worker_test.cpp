#include "app/base/errands.h"
#include "app/base/work_queue.h"
#include "support/no_threads.h"

#include <QTest>

#include <gtest/gtest.h>

#include <atomic>
#include <numeric>
#include <semaphore>

namespace tidebrook {
namespace {

using namespace std::chrono_literals;

constexpr int patience = 20'000; // ms

/// Somebody who has numbers worked out, and is told them.
struct Asker {
    bool ask(WorkQueue &queue, int number) {
        return queue.ask(
            &screen,
            [this, number] {
                done.push_back(number);
                return number;
            },
            [this](int result) { told.push_back(result); });
    }

    std::vector<int> done; // by the queue's thread
    std::vector<int> told;
    QObject screen;
};

TEST(WorkQueueTest, DoesAllInOrderAndTellsWhoIsStillThere) {
    Asker asker;
    WorkQueue queue;
    auto gone = std::make_unique<QObject>();
    bool isDone = false;
    ASSERT_TRUE(queue.ask(
        gone.get(), [&] { return isDone = true; }, [](bool) { FAIL(); }));
    gone.reset();
    std::vector<int> expected(100);
    std::iota(expected.begin(), expected.end(), 0);
    for (const int number : expected)
        ASSERT_TRUE(asker.ask(queue, number));
    EXPECT_TRUE(QTest::qWaitFor([&] { return asker.told.size() == expected.size(); }, patience));
    EXPECT_TRUE(isDone);
    EXPECT_EQ(asker.done, expected);
    EXPECT_EQ(asker.told, expected);
}

TEST(WorkQueueTest, TheEndWaitsForWhatWasGivenAndTellsNoMore) {
    Asker asker;
    WorkQueue queue;
    {
        const NoThreads noThreads;
        EXPECT_FALSE(asker.ask(queue, 0)) << "there is no thread, which the next may have";
    }
    std::binary_semaphore gate(0);
    queue.tell([&gate] { gate.acquire(); });
    for (const int number : {1, 2, 3})
        asker.ask(queue, number);
    gate.release();
    queue.finish();
    EXPECT_EQ(asker.done, std::vector<int>({1, 2, 3}));
    EXPECT_FALSE(asker.ask(queue, 4));
    QCoreApplication::processEvents();
    EXPECT_EQ(asker.told, std::vector<int>());
}

int waitForStop(const StopSignal &stop) { return stop.wait(20s) ? 1 : 2; }
int answer(const StopSignal &) { return 3; }

TEST(ErrandsTest, AreToldUnlessTheyAreCalledOffOrNobodyIsThere) {
    Errands errands;
    int running = 0;
    QObject::connect(&errands, &Errands::begun, &errands, [&] { ++running; });
    QObject::connect(&errands, &Errands::done, &errands, [&] { --running; });
    QList<int> told;
    const auto tell = [&told](int result) { told.append(result); };
    QObject receiver;
    auto gone = std::make_unique<QObject>();
    const auto calledOff = errands.run(&receiver, waitForStop, tell);
    ASSERT_TRUE(calledOff);
    calledOff->raise();
    ASSERT_TRUE(errands.run(gone.get(), answer, tell));
    gone.reset();
    ASSERT_TRUE(errands.run(&receiver, answer, tell));
    EXPECT_TRUE(QTest::qWaitFor([&] { return running == 0; }, patience));
    EXPECT_EQ(told, QList<int>{3});

    std::atomic<int> ended = 0;
    const auto work = [&ended](const StopSignal &stop) { return ended += waitForStop(stop); };
    ASSERT_TRUE(errands.run(&receiver, work, tell) && errands.run(&receiver, work, tell));
    errands.finish();
    EXPECT_EQ(ended, 2) << "each is called off, and waited for";
    EXPECT_FALSE(errands.run(&receiver, answer, tell));
    QCoreApplication::processEvents();
    EXPECT_EQ(told, QList<int>{3});
}

} // namespace
} // namespace tidebrook
