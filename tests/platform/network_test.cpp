#include "platform/network/network_watch.h"
#include "support/system_bus.h"
#include "support/waiting.h"

#include <QCoreApplication>
#include <QTest>

#include <poll.h>

#include <optional>

namespace tidebrook {
namespace {

using namespace std::chrono_literals;

class NetworkTest : public testing::Test {
protected:
    NetworkTest() { qputenv("DBUS_SYSTEM_BUS_ADDRESS", bus_->address()); }
    ~NetworkTest() override { qunsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }

    /// Whether the watch comes to say so. It is called only when its descriptor calls for it.
    bool says(NetworkWatch &watch, std::optional<bool> isFree, std::optional<bool> isRoaming) {
        return QTest::qWaitFor(
            [&] {
                pollfd waiting{watch.descriptor(), POLLIN, 0};
                if (poll(&waiting, 1, 0) > 0)
                    watch.process();
                return watch.isSettled() && watch.state() == NetworkState{isFree, isRoaming};
            },
            patienceLimit);
    }

    int argumentCount_ = 0;
    QCoreApplication application_{argumentCount_, nullptr};
    std::optional<PrivateBus> bus_{std::in_place};
};

TEST_F(NetworkTest, NetworkManagersStateIsFollowed) {
    NetworkWatch watch;
    EXPECT_TRUE(says(watch, {}, {})) << "it does not run";
    NetworkManager manager(bus_->address());
    manager.set(70, 1);
    manager.begin();
    EXPECT_TRUE(says(watch, false, {})) << "it was started";
    const struct {
        quint32 state;
        quint32 metered;
        bool isFree;
    } states[]{{70, 2, true}, {70, 3, false}, {70, 4, true}, {20, 0, false},
               {50, 4, true}, {40, 4, false}, {60, 0, true}, {10, 2, false}};
    for (const auto &each : states) {
        manager.set(each.state, each.metered);
        EXPECT_TRUE(says(watch, each.isFree, {})) << each.state << ' ' << each.metered;
    }
    NetworkWatch other;
    EXPECT_FALSE(other.isSettled()) << "the answer is still to come";
    EXPECT_TRUE(says(other, false, {})) << "it ran before";
}

TEST_F(NetworkTest, APhoneRoamsWhereTheModemInUseDoes) {
    NetworkWatch watch;
    ModemManager manager(bus_->address());
    manager.begin();
    EXPECT_TRUE(says(watch, {}, false)) << "no modem";
    const struct {
        int modem;
        int state;
        quint32 registration;
        bool isRoaming;
    } changes[]{
        {0, 8, 5, true},                                        // registered abroad
        {1, 11, 1, false},                                      // connected at home
        {0, 11, 5, true},                                       // both are connected
        {1, 8, 1, true},   {0, 11, 1, false}, {0, 11, 10, true} // data falls back abroad
    };
    for (const auto &change : changes) {
        manager.set(change.modem, change.state, change.registration);
        EXPECT_TRUE(says(watch, {}, change.isRoaming)) << change.modem << ' ' << change.state;
    }
}

TEST_F(NetworkTest, ABarDoesNotStayWhenItsDaemonIsGone) {
    NetworkWatch patient;
    NetworkWatch hasty(0ms);
    std::optional<NetworkManager> manager(bus_->address());
    std::optional<ModemManager> modems(bus_->address());
    manager->set(70, 1);
    modems->set(0, 11, 5);
    manager->begin();
    modems->begin();
    for (NetworkWatch *watch : {&patient, &hasty})
        EXPECT_TRUE(says(*watch, false, true));
    manager.reset();
    EXPECT_TRUE(says(hasty, true, true));
    modems.reset();
    EXPECT_TRUE(says(hasty, true, false));
    EXPECT_TRUE(says(patient, false, true)) << "they may be starting anew";
    manager.emplace(bus_->address());
    manager->set(20, 0);
    manager->begin();
    EXPECT_TRUE(says(hasty, false, false));
    bus_.reset();
    EXPECT_TRUE(says(hasty, true, false));
    EXPECT_TRUE(says(patient, false, true));
    pollfd waiting{patient.descriptor(), POLLIN, 0};
    EXPECT_EQ(poll(&waiting, 1, 0), 0) << "a bus that is gone wakes nothing up";
}

} // namespace
} // namespace tidebrook
