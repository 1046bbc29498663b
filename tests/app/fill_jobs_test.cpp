#include "app/fill_jobs.h"
#include "support/forked_process.h"
#include "support/no_threads.h"
#include "support/waiting.h"
#include "test_device/test_device.h"

#include <QElapsedTimer>
#include <QTest>

#include <gtest/gtest.h>

#include <array>
#include <semaphore>
#include <string>

namespace tidebrook {
namespace {

using namespace std::chrono_literals;

/// Two screens and the fills that they launch, each of which stands still before it looks for a
/// stop, until it is let on.
class Screens {
public:
    Screens() {
        QObject::connect(&fills, &FillJobs::begun, &screen_, [this] { ++running; });
        QObject::connect(&fills, &FillJobs::done, &screen_, [this] { --running; });
    }
    ~Screens() {
        for (HeldFill &fill : held_)
            fill.end.release();
        fills.finish();
    }
    Screens(const Screens &) = delete;
    Screens &operator=(const Screens &) = delete;

    /// L and l launch for the one screen and the other, N for the one a fill that does not look
    /// any more. S asks for a stop, and a digit has that fill end. False when nothing is launched.
    bool play(char event) {
        if (event == 'S')
            fills.requestStop();
        else if (event < 'A')
            end(held_.at(static_cast<std::size_t>(event - '0')));
        else
            return launch(event == 'l' ? other_ : screen_, event != 'N');
        return true;
    }
    void play(const std::string &events) {
        for (const char event : events)
            EXPECT_TRUE(play(event));
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
        std::binary_semaphore end{0};
        bool isStopped = false;
    };

    bool launch(QObject &receiver, bool isLooking) {
        HeldFill &held = held_.at(++launches_);
        const std::string name = std::to_string(launches_);
        return fills.launch(
            &receiver,
            {.collect =
                 [&held, isLooking](FillStop &stop) {
                     held.end.acquire();
                     held.isStopped = isLooking && stop.isRequested();
                 },
             .show = [this, &held, name] { seen += held.isStopped ? "(" + name + ")" : name; },
             .again = [this] { seen += 'A'; }});
    }
    void end(HeldFill &fill) {
        const int before = running;
        fill.end.release();
        ASSERT_TRUE(QTest::qWaitFor([&] { return running < before; }, patienceLimit));
    }

    QObject screen_;
    QObject other_;
    std::array<HeldFill, 6> held_;
    std::size_t launches_ = 0;
};

TEST(FillJobsTest, LaunchesCountDownStopsCountUpAndTheNewestRowsAreSeen) {
    const struct {
        const char *events;
        int fillStop;
        const char *seen;
    } cases[]{
        {"L1", -1, "1"},          // a fill to its end leaves the counter
        {"LS1", 0, "1"},          // one stop only balances the launch
        {"LSS1", 0, "(1)"},       // the second one stops the fill, which counts down
        {"L1SL2", -1, "12"},      // a stop that comes too late stops nothing
        {"LL12", -2, "2"},        // of two at once the newer one is seen
        {"LL21", -2, "2"},        // in whichever order they end
        {"Ll12", -2, "12"},       // but one for each screen
        {"LLSSS12", 0, "2"},      // a stop takes the first that looks
        {"SL", 0, "A"},           // no fill will see this stop: it is balanced
        {"SSSL", 2, "A"},         // one each time that the screen asks
        {"SLL2", -1, "A2"},       // and then it is filled
        {"LSSL1", 0, "A"},        // refused while one runs, and asked for after it
        {"NSSL1", 0, "A"},        // also when that one did not look any more
        {"LLSSSL1L24", -1, "4"},  // what was refused was launched meanwhile
        {"LlSSSL1l24", -1, "4A"}, // or only another screen's was
    };
    for (const auto &expected : cases) {
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
        EXPECT_FALSE(screens.play('L'));
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
    EXPECT_TRUE(QTest::qWaitFor([&] { return screens.seen == "A"; }, patienceLimit));
    EXPECT_EQ(screens.fills.fillStop(), 0);
}

} // namespace
} // namespace tidebrook
