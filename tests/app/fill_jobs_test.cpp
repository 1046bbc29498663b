#include "app/base/fill_jobs.h"
#include "support/forked_process.h"
#include "support/no_threads.h"
#include "support/test_device.h"

#include <QElapsedTimer>
#include <QTest>

#include <gtest/gtest.h>

#include <array>
#include <semaphore>
#include <string>

namespace tidebrook {
namespace {

using namespace std::chrono_literals;

constexpr int patience = 20'000; // ms

/// Two screens and the fills that they launch, each of which stands still before its one row, and
/// again behind it, until it is let on.
class Screens {
public:
    Screens() {
        QObject::connect(&fills, &FillJobs::begun, &screen_, [this] { ++running; });
        QObject::connect(&fills, &FillJobs::done, &screen_, [this] { --running; });
    }
    ~Screens() {
        for (HeldFill &fill : held_) {
            fill.row.release();
            fill.end.release();
        }
        fills.finish();
    }
    Screens(const Screens &) = delete;
    Screens &operator=(const Screens &) = delete;

    bool launch(QObject &receiver) {
        ++launches_;
        HeldFill &held = held_.at(launches_);
        const std::string name = std::to_string(launches_);
        return fills.launch(
            &receiver,
            {.collect =
                 [&held](FillStop &stop) {
                     held.row.acquire();
                     held.isStopped = stop.isRequested();
                     held.isBehindRow = true;
                     held.end.acquire();
                 },
             .show = [this, &held, name] { seen += held.isStopped ? "(" + name + ")" : name; },
             .again = [this] { seen += 'A'; }});
    }
    bool launch() { return launch(screen_); }

    /// L and l launch for the one screen and the other, S asks for a stop, < has fill 1 look
    /// before its row, and a digit has that fill end.
    void play(const std::string &events) {
        for (const char event : events) {
            if (event == 'L' || event == 'l')
                EXPECT_TRUE(launch(event == 'L' ? screen_ : other_));
            else if (event == 'S')
                fills.requestStop();
            else if (event == '<')
                lookBeforeRow(held_[1]);
            else
                end(held_.at(static_cast<std::size_t>(event - '0')));
        }
        QCoreApplication::processEvents();
    }

    TestDevice device;
    NamedMutex mutex{device.root, u"RSSMutex"};
    FillJobs fills{mutex};
    int running = 0;
    /// Fill N as "N" when all its rows are shown, as "(N)" when it was stopped; "A" when a screen
    /// is to launch again.
    std::string seen;

private:
    struct HeldFill {
        std::binary_semaphore row{0};
        std::binary_semaphore end{0};
        std::atomic<bool> isBehindRow = false;
        bool isStopped = false;
    };

    static void lookBeforeRow(HeldFill &fill) {
        fill.row.release();
        ASSERT_TRUE(QTest::qWaitFor([&] { return fill.isBehindRow.load(); }, patience));
    }
    void end(HeldFill &fill) {
        fill.row.release();
        fill.end.release();
        const int before = running;
        ASSERT_TRUE(QTest::qWaitFor([&] { return running < before; }, patience));
    }

    QObject screen_;
    QObject other_;
    std::array<HeldFill, 6> held_;
    std::size_t launches_ = 0;
};

TEST(FillJobsTest, LaunchesCountDownStopsCountUpAndTheNewestRowsAreSeen) {
    struct Case {
        const char *events;
        int fillStop;
        const char *seen;
    };
    const std::array cases{
        Case{"L1", -1, "1"},          // a fill to its end leaves the counter
        Case{"LS1", 0, "1"},          // one stop only balances the launch
        Case{"LSS1", 0, "(1)"},       // the second one stops the fill, which counts down
        Case{"L1SL2", -1, "12"},      // a stop that comes too late stops nothing
        Case{"LL12", -2, "2"},        // of two at once the newer one is seen
        Case{"LL21", -2, "2"},        // in whichever order they end
        Case{"Ll12", -2, "12"},       // but one for each screen
        Case{"LLSSS12", 0, "2"},      // a stop takes the first that looks
        Case{"SL", 0, "A"},           // no fill will see this stop: it is balanced
        Case{"SSSL", 2, "A"},         // one each time that the screen asks
        Case{"SLL2", -1, "A2"},       // and then it is filled
        Case{"LSSL1", 0, "A"},        // refused while one runs, and asked for after it
        Case{"L<SSL1", 0, "A"},       // also when that one did not look any more
        Case{"LLSSSL1L24", -1, "4"},  // what was refused was launched meanwhile
        Case{"LlSSSL1l24", -1, "4A"}, // or only another screen's was
    };
    for (const Case &expected : cases) {
        SCOPED_TRACE(expected.events);
        Screens screens;
        screens.play(expected.events);
        EXPECT_EQ(screens.fills.fillStop(), expected.fillStop);
        EXPECT_EQ(screens.seen, expected.seen);
        EXPECT_EQ(screens.running, 0);
    }
}

TEST(FillJobsTest, AtTheEndFillsAreStoppedAndWaitedForAndNothingIsToldAnyMore) {
    Screens screens;
    std::atomic<int> ended = 0;
    bool isShown = false;
    QObject screen;
    const FillJobs::Fill endless{.collect =
                                     [&ended](FillStop &stop) {
                                         while (!stop.isRequested())
                                             std::this_thread::yield();
                                         ++ended;
                                     },
                                 .show = [&isShown] { isShown = true; },
                                 .again = [] {}};
    {
        const NoThreads noThreads;
        EXPECT_FALSE(screens.fills.launch(&screen, endless));
    }
    ASSERT_TRUE(screens.fills.launch(&screen, endless));
    ASSERT_TRUE(screens.fills.launch(&screen, endless));
    screens.fills.finish();
    QCoreApplication::processEvents();
    EXPECT_EQ(ended, 2);
    EXPECT_FALSE(isShown);
    EXPECT_EQ(screens.fills.fillStop(), -2) << "no stop was asked for";
    EXPECT_FALSE(screens.fills.launch(&screen, endless));
}

std::unique_ptr<ForkedProcess> startMutexHolder(const DeviceRoot &root) {
    return startStaying([&root](const auto &stay) {
        NamedMutex mutex(root, u"RSSMutex");
        if (mutex.lock(10s))
            stay();
    });
}

TEST(FillJobsTest, NothingIsLaunchedStoppedOrBalancedWhileAnotherProcessHasTheMutex) {
    Screens screens;
    {
        const auto holder = startMutexHolder(screens.device.root);
        QElapsedTimer timer;
        timer.start();
        EXPECT_FALSE(screens.launch());
        EXPECT_GE(timer.restart(), 2000);
        screens.fills.requestStop();
        EXPECT_GE(timer.elapsed(), 1000);
        EXPECT_EQ(screens.fills.fillStop(), 0);
    }
    screens.fills.requestStop();
    {
        const auto holder = startMutexHolder(screens.device.root);
        screens.play("L"); // refused, for a stop that cannot be balanced yet
        EXPECT_EQ(screens.seen, "");
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return screens.seen == "A"; }, patience));
    EXPECT_EQ(screens.fills.fillStop(), 0);
}

} // namespace
} // namespace tidebrook
