#include "support/blocked_time.h"
#include "support/forked_process.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <gtest/gtest.h>
#include <sched.h>

#include <algorithm>
#include <ctime>
#include <thread>

namespace tidebrook {
namespace {

using namespace std::chrono_literals;

constexpr auto stretch = 80ms;

char program[] = "support_tests";
char *arguments[] = {program, nullptr};
int argumentCount = 1;

void sleep() { std::this_thread::sleep_for(stretch); }

void spin() {
    const std::clock_t end = std::clock() + CLOCKS_PER_SEC * stretch.count() / 1000;
    while (std::clock() < end) {
    }
}

void spinInCompany() {
    cpu_set_t processor;
    CPU_ZERO(&processor);
    CPU_SET(static_cast<std::size_t>(sched_getcpu()), &processor);
    sched_setaffinity(0, sizeof processor, &processor);
    const ForkedProcesses company = forkProcesses(2, []() -> int {
        for (;;)
            spin();
    });
    spin();
}

/// Runs a loop in which the work is done by a timer, or by what a timer has posted.
enum class As { Timer, Posted };
void loop(As as, const std::function<void()> &work, std::chrono::milliseconds begin = 5ms) {
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(
        &timer, &QTimer::timeout, &loop,
        [&] {
            work();
            loop.quit();
        },
        as == As::Timer ? Qt::DirectConnection : Qt::QueuedConnection);
    timer.start(begin);
    loop.exec();
}

void nothing() {}

struct Row {
    const char *name;
    bool isSeen;
    std::function<void(As)> work;
};

const Row rows[]{
    {"sleep", true, [](As as) { loop(as, sleep); }},
    {"spin", false, [](As as) { loop(as, spin); }},
    {"spin on a busy processor", false, [](As as) { loop(as, spinInCompany); }},
    {"wait for an event", false, [](As as) { loop(as, [as] { loop(as, nothing, stretch); }); }},
    {"sleep, then a nested loop", true,
     [](As as) {
         loop(as, [as] {
             sleep();
             loop(as, nothing);
         });
     }},
    {"sleep in a nested loop", true, [](As as) { loop(as, [as] { loop(as, sleep); }); }},
    {"sleep behind a nested loop", true,
     [](As as) {
         loop(as, [as] {
             loop(as, nothing);
             sleep();
         });
     }},
    {"short sleeps in many turns", false,
     [](As as) {
         for (int i = 0; i < 4; ++i) {
             loop(as, [] { std::this_thread::sleep_for(stretch / 4); });
         }
     }},
    {"short sleeps with looks for events between", false,
     [](As as) {
         loop(as, [] {
             for (int i = 0; i < 4; ++i) {
                 std::this_thread::sleep_for(stretch / 4);
                 QCoreApplication::processEvents();
             }
         });
     }},
};

/// In milliseconds, measured in a process of its own with the one or the other event dispatcher.
class Measurement {
public:
    Measurement(const Row &row, As as, bool isGlib)
        : row_(row), as_(as), isGlib_(isGlib), process_([&row, as, isGlib] {
              qputenv("QT_NO_GLIB", isGlib ? "" : "1");
              const QCoreApplication application(argumentCount, arguments);
              BlockedTime blocked;
              row.work(as);
              return static_cast<int>(std::min<std::int64_t>(blocked.longest() / 1ms, 255));
          }) {}

    void check() {
        constexpr int limit = 50;
        const int blocked = process_.wait();
        EXPECT_TRUE(blocked >= 0 && row_.isSeen == (blocked > limit))
            << row_.name << ": " << blocked << " ms" << (as_ == As::Timer ? ", by a timer" : "")
            << (isGlib_ ? "" : ", without glib");
    }

private:
    const Row &row_;
    const As as_;
    const bool isGlib_;
    ForkedProcess process_;
};

TEST(BlockedTime, SeesWhatKeepsALoopFromItsEventsAndNothingElse) {
    std::vector<std::unique_ptr<Measurement>> all; // at the same time, on a busy machine so
    for (const Row &row : rows) {
        for (const As as : {As::Timer, As::Posted}) {
            all.push_back(std::make_unique<Measurement>(row, as, true));
            all.push_back(std::make_unique<Measurement>(row, as, false));
        }
    }
    for (const auto &measurement : all)
        measurement->check();
}

TEST(BlockedTime, BegunAnewItForgetsWhatWasOutsideOfLoops) {
    ForkedProcess process([] {
        const QCoreApplication application(argumentCount, arguments);
        BlockedTime blocked;
        loop(As::Timer, nothing);
        sleep();
        blocked.beginAnew();
        loop(As::Timer, nothing);
        return blocked.longest() < 50ms ? 0 : 1;
    });
    EXPECT_EQ(process.wait(), 0);
}

} // namespace
} // namespace tidebrook
