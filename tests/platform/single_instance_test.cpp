#include "platform/single_instance.h"
#include "platform/wait_any.h"
#include "support/forked_process.h"
#include "support/text_printing.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

using Claim = SingleInstance::Claim;

class SingleInstanceTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(device_.makeFolders()); }

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

    QTemporaryDir folder_;
    const DeviceRoot device_{folder_.filePath(u"device"_s)};
};

constexpr int broughtForward = static_cast<int>(Claim::BroughtForward);

TEST_F(SingleInstanceTest, ALaterStartAsksTheFirstToComeForwardAndHandsItsLeaveOn) {
    SingleInstance first(device_);
    ASSERT_EQ(first.claim(0ms), Claim::Mine);
    EXPECT_EQ(first.takeRequest(), std::nullopt);
    struct Row {
        QByteArray token;
        QByteArray startupId;
        QString taken;
    };
    const Row rows[]{{"token", "id", u"token"_s}, {"", "id", u"id"_s}, {"", "", {}}};
    for (const Row &row : rows) {
        const auto second = start(row.token, row.startupId);
        ASSERT_TRUE(isAsked(first));
        EXPECT_EQ(first.takeRequest(), row.taken);
        EXPECT_FALSE(isAsked(first, 0ms)) << "once for each start";
        EXPECT_EQ(first.takeRequest(), std::nullopt);
        EXPECT_EQ(second->wait(), broughtForward);
    }
    const QDir device(device_.path());
    EXPECT_EQ(device.entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name),
              (QStringList{u"Temp"_s, u"run"_s, u"windows"_s}))
        << "a start that ends again must touch neither database nor registry";
}

TEST_F(SingleInstanceTest, OneThatIsKilledLeavesNothingToTheNext) {
    const SharedCount claimed;
    ForkedProcess killed([&] {
        SingleInstance instance(device_);
        if (instance.claim(0ms) == Claim::Mine)
            claimed.add();
        return pause();
    });
    ASSERT_TRUE(claimed.wait());
    SingleInstance next(device_);
    qputenv("XDG_ACTIVATION_TOKEN", "token");
    EXPECT_EQ(next.claim(50ms), Claim::NoAnswer) << "it does not look at requests";
    qunsetenv("XDG_ACTIVATION_TOKEN");
    killed.kill();
    killed.wait();
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
        const SharedCount ended;
        const SharedCount end;
        ForkedProcesses processes = forkProcesses(starts, [&] {
            SingleInstance instance(device_);
            begin.wait();
            const Claim claim = instance.claim(20s);
            if (claim != Claim::Mine)
                ended.add();
            std::array<pollfd, 2> watched{
                {{instance.requestDescriptor(), POLLIN, 0}, {end.descriptor(), POLLIN, 0}}};
            while (claim == Claim::Mine && watched[1].revents == 0) {
                poll(watched.data(), watched.size(), -1);
                instance.takeRequest();
            }
            return static_cast<int>(claim);
        });
        begin.add();
        for (std::uint64_t count = 0; count < starts - 1;) {
            const std::uint64_t more = ended.take();
            ASSERT_GT(more, 0U) << "in round " << round;
            count += more;
        }
        end.add();
        std::array<int, 4> ends{};
        for (const auto &process : processes)
            ++ends.at(static_cast<std::size_t>(process->wait()));
        EXPECT_EQ(ends, (std::array{1, starts - 1, 0, 0})) << "in round " << round;
    }
}

} // namespace
} // namespace tidebrook
