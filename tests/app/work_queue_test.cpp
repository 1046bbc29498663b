#include "app/base/work_queue.h"
#include "support/no_threads.h"

#include <QTest>

#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <semaphore>

namespace tidebrook {
namespace {

constexpr int patience = 20'000; // ms

/// Somebody who asks for numbers, and is told them.
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

TEST(WorkQueueTest, DoesAndTellsAllInTheOrderInWhichItWasGiven) {
    Asker asker;
    WorkQueue queue;
    std::vector<int> expected(100);
    std::iota(expected.begin(), expected.end(), 0);
    for (const int number : expected)
        ASSERT_TRUE(asker.ask(queue, number));
    EXPECT_TRUE(QTest::qWaitFor([&] { return asker.told.size() == expected.size(); }, patience));
    queue.finish();
    EXPECT_EQ(asker.done, expected);
    EXPECT_EQ(asker.told, expected);
}

TEST(WorkQueueTest, WorkOfAScreenThatIsGoneIsDoneButNotTold) {
    Asker asker;
    WorkQueue queue;
    auto gone = std::make_unique<QObject>();
    bool isDone = false;
    ASSERT_TRUE(queue.ask(
        gone.get(), [&] { return isDone = true; }, [](bool) { FAIL(); }));
    gone.reset();
    ASSERT_TRUE(asker.ask(queue, 1));
    EXPECT_TRUE(QTest::qWaitFor([&] { return asker.told.size() == 1; }, patience));
    EXPECT_TRUE(isDone);
}

TEST(WorkQueueTest, FinishingDoesWhatWasGivenAndTellsNoMore) {
    Asker asker;
    WorkQueue queue;
    std::binary_semaphore gate(0);
    queue.tell([&gate] { gate.acquire(); });
    for (const int number : {1, 2, 3})
        asker.ask(queue, number);
    gate.release();
    queue.finish();
    EXPECT_EQ(asker.done, std::vector<int>({1, 2, 3}));
    QCoreApplication::processEvents();
    EXPECT_EQ(asker.told, std::vector<int>());
    EXPECT_FALSE(asker.ask(queue, 4));
    EXPECT_FALSE(queue.tell([] {}));
}

TEST(WorkQueueTest, WithoutAThreadTheWorkIsRefusedAndTheNextMayBeTaken) {
    Asker asker;
    WorkQueue queue;
    int running = 0;
    QObject::connect(&queue, &WorkQueue::begun, &asker.screen, [&] { ++running; });
    QObject::connect(&queue, &WorkQueue::done, &asker.screen, [&] { --running; });
    {
        const NoThreads noThreads;
        EXPECT_FALSE(asker.ask(queue, 1));
    }
    EXPECT_EQ(running, 0);
    EXPECT_TRUE(asker.ask(queue, 2));
    EXPECT_TRUE(QTest::qWaitFor([&] { return running == 0; }, patience));
    EXPECT_EQ(asker.told, std::vector<int>({2}));
}

} // namespace
} // namespace tidebrook
