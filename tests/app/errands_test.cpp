#include "app/base/errands.h"
#include "support/no_threads.h"

#include <QTest>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace std::chrono_literals;

constexpr int patience = 20'000; // ms

int waitForStop(const StopSignal &stop) { return stop.wait(20s) ? 1 : 2; }
int answer(const StopSignal &) { return 3; }

TEST(ErrandsTest, WhatComesOfOneIsToldUnlessItIsCalledOffOrNobodyIsThere) {
    Errands errands;
    int begun = 0;
    int done = 0;
    QObject::connect(&errands, &Errands::begun, &errands, [&] { ++begun; });
    QObject::connect(&errands, &Errands::done, &errands, [&] { ++done; });
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
    EXPECT_TRUE(QTest::qWaitFor([&] { return done == 3; }, patience));
    EXPECT_EQ(told, QList<int>{3});
    EXPECT_EQ(begun, 3);
}

TEST(ErrandsTest, TheEndCallsOffAllAndWaitsForThem) {
    Errands errands;
    QObject receiver;
    std::atomic<int> ended = 0;
    bool isTold = false;
    const auto work = [&ended](const StopSignal &stop) { return ended += waitForStop(stop); };
    const auto tell = [&isTold](int) { isTold = true; };
    {
        const NoThreads noThreads;
        EXPECT_FALSE(errands.run(&receiver, work, tell));
    }
    ASSERT_TRUE(errands.run(&receiver, work, tell) && errands.run(&receiver, work, tell));
    errands.finish();
    EXPECT_EQ(ended, 2);
    EXPECT_FALSE(errands.run(&receiver, work, tell));
    QCoreApplication::processEvents();
    EXPECT_FALSE(isTold);
}

} // namespace
} // namespace tidebrook
