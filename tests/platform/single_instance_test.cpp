#include "platform/desktop/single_instance.h"
#include "platform/sync/wait_any.h"
#include "support/device_folders.h"
#include "support/forked_process.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

using Claim = SingleInstance::Claim;

class SingleInstanceTest : public DeviceFolders {
protected:
    /// A start in a process of its own, which ends with what it has come to.
    std::unique_ptr<ForkedProcess> start(const QByteArray &token = {},
                                         const QByteArray &startupId = {}) const {
        return std::make_unique<ForkedProcess>([=, this] {
            qputenv("XDG_ACTIVATION_TOKEN", token);
            qputenv("DESKTOP_STARTUP_ID", startupId);
            return static_cast<int>(SingleInstance(device_).claim(20s));
        });
    }

    static bool isAsked(const SingleInstance &instance, std::chrono::milliseconds timeout = 20s) {
        return WaitAny({}, instance.requestDescriptor(), timeout).kind == WaitResult::Kind::Input;
    }
};

constexpr int broughtForward = static_cast<int>(Claim::BroughtForward);

TEST_F(SingleInstanceTest, ALaterStartAsksTheFirstToComeForwardAndHandsItsLeaveOn) {
    SingleInstance first(device_);
    ASSERT_EQ(first.claim(0ms), Claim::Mine);
    EXPECT_EQ(first.takeRequest(), std::nullopt);
    const std::tuple<QByteArray, QByteArray, QString> rows[]{
        {"token", "id", u"token"_s}, {"", "id", u"id"_s}, {"", "", {}}};
    for (const auto &[token, startupId, taken] : rows) {
        const auto second = start(token, startupId);
        ASSERT_TRUE(isAsked(first));
        EXPECT_EQ(first.takeRequest(), taken);
        EXPECT_FALSE(isAsked(first, 0ms)) << "once for each start";
        EXPECT_EQ(first.takeRequest(), std::nullopt);
        EXPECT_EQ(second->wait(), broughtForward);
    }
}

TEST_F(SingleInstanceTest, OneThatIsKilledLeavesNothingToTheNext) {
    const auto killed = startStaying([&](const auto &stay) {
        SingleInstance instance(device_);
        if (instance.claim(0ms) == Claim::Mine)
            stay();
    });
    SingleInstance next(device_);
    qputenv("XDG_ACTIVATION_TOKEN", "token");
    EXPECT_EQ(next.claim(50ms), Claim::NoAnswer) << "it does not look at requests";
    qunsetenv("XDG_ACTIVATION_TOKEN");
    killed->kill();
    ASSERT_EQ(next.claim(0ms), Claim::Mine);
    EXPECT_FALSE(next.takeRequest()) << "that was to the one before";
    const auto second = start();
    ASSERT_TRUE(isAsked(next));
    EXPECT_EQ(next.takeRequest(), QString()) << "the leave was for the one before";
    EXPECT_EQ(second->wait(), broughtForward);
}

TEST_F(SingleInstanceTest, OfStartsAtTheSameMomentExactlyOneRuns) {
    constexpr int starts = 4;
    for (int round = 0; round < 25; ++round) {
        const SharedCount begin;
        const SharedCount running;
        const SharedCount asking;
        const ForkedProcesses processes = forkProcesses(starts, [&] {
            SingleInstance instance(device_);
            begin.wait();
            const Claim claim = instance.claim(20s);
            if (claim == Claim::BroughtForward)
                asking.add();
            if (claim == Claim::Mine)
                running.add();
            while (claim == Claim::Mine && isAsked(instance))
                instance.takeRequest();
            return 0;
        });
        begin.add();
        for (std::uint64_t count = 0; count < starts - 1;) {
            const std::uint64_t more = asking.take();
            ASSERT_GT(more, 0U) << "in round " << round;
            count += more;
        }
        EXPECT_EQ(running.take(), 1U) << "in round " << round;
    }
}

} // namespace
} // namespace tidebrook
