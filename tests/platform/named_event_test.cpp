#include "platform/named_event.h"
#include "platform/wait_any.h"
#include "support/forked_process.h"
#include "support/text_printing.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

using Kind = WaitResult::Kind;
using Reset = NamedEvent::Reset;

class NamedEventTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(device_.makeFolders()); }

    QTemporaryDir folder_;
    const DeviceRoot device_{folder_.path()};
};

/// `Event` and its index, or the kind of whatever else ended the wait.
std::string told(const WaitResult &result) {
    switch (result.kind) {
    case Kind::Event:
        return "Event " + std::to_string(result.index);
    case Kind::Input:
        return "Input";
    case Kind::TimedOut:
        return "TimedOut";
    case Kind::Failed:
        return "Failed";
    }
    return {};
}

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
        EXPECT_EQ(told(WaitAny({&event}, -1, 20s)), "Event 0");
        EXPECT_EQ(event.test(), isManual);
        EXPECT_EQ(NamedEvent(device_, name, reset).test(), isManual);
        event.reset();
        EXPECT_EQ(told(WaitAny({&event}, -1, 0s)), "TimedOut");
    }
    NamedEvent(device_, u"manual", Reset::Manual).set();
    EXPECT_FALSE(NamedEvent(device_, u"manual", Reset::Manual).test()) << "nobody held it open";
}

TEST_F(NamedEventTest, SettersOfTheSameMomentSetItOnce) {
    NamedEvent event(device_, u"auto", Reset::Auto);
    // What two leave who have both found it not set.
    ASSERT_EQ(write(event.descriptor(), "!!", 2), 2);
    EXPECT_TRUE(event.test());
    EXPECT_FALSE(event.test());
}

TEST_F(NamedEventTest, OneOfManyWaitingProcessesTakesAnAutoResetEvent) {
    NamedEvent event(device_, u"event", Reset::Auto);
    const SharedCount taken;
    const SharedCount end;
    ForkedProcesses waiters = forkProcesses(4, [&] {
        NamedEvent own(device_, u"event", Reset::Auto);
        WaitResult result = WaitAny({&own}, end.descriptor(), 40s);
        for (; result.kind == Kind::Event; result = WaitAny({&own}, end.descriptor(), 40s))
            taken.add();
        return result.kind == Kind::Input ? 0 : 1;
    });
    for (int round = 0; round < 300; ++round) {
        ASSERT_TRUE(event.set());
        ASSERT_EQ(taken.take(), 1U) << "in round " << round;
    }
    end.add();
    for (const auto &waiter : waiters)
        EXPECT_EQ(waiter->wait(), 0);
    pollfd more{taken.descriptor(), POLLIN, 0};
    EXPECT_EQ(poll(&more, 1, 0), 0) << "somebody took what was not set";
}

TEST_F(NamedEventTest, TheFirstEventGoesBeforeTheOthersAndInputComesLast) {
    NamedEvent closed(device_, u"no/such/folder", Reset::Auto);
    NamedEvent manual(device_, u"manual", Reset::Manual);
    NamedEvent automatic(device_, u"auto", Reset::Auto);
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const auto wait = [&] { return told(WaitAny({&closed, &automatic, &manual}, pipe[0], 0s)); };
    EXPECT_EQ(wait(), "TimedOut");
    ASSERT_EQ(write(pipe[1], "x", 1), 1);
    ASSERT_TRUE(manual.set() && automatic.set());
    EXPECT_EQ(wait(), "Event 1");
    EXPECT_EQ(wait(), "Event 2");
    EXPECT_EQ(wait(), "Event 2");
    manual.reset();
    EXPECT_EQ(wait(), "Input");
    char byte = 0;
    EXPECT_EQ(read(pipe[0], &byte, 1), 1) << "input is left to the caller";
    EXPECT_EQ(wait(), "TimedOut");
    close(pipe[1]);
    EXPECT_EQ(wait(), "Input") << "the other end is closed";
    close(pipe[0]);
    EXPECT_EQ(wait(), "Failed");
}

TEST_F(NamedEventTest, SignalsNeitherEndAWaitNorStretchIt) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    struct sigaction before {};
    ASSERT_EQ(sigaction(SIGALRM, &action, &before), 0);
    const itimerval storm{{0, 3'000}, {0, 3'000}};
    ASSERT_EQ(setitimer(ITIMER_REAL, &storm, nullptr), 0);
    NamedEvent event(device_, u"event", Reset::Auto);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(told(WaitAny({&event}, -1, 200ms)), "TimedOut");
    EXPECT_GE(timer.elapsed(), 200);
    const itimerval calm{};
    setitimer(ITIMER_REAL, &calm, nullptr);
    sigaction(SIGALRM, &before, nullptr);
}

} // namespace
} // namespace tidebrook
