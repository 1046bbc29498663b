#include "feed_server/generated_feed.h"
#include "service/running_service.h"
#include "support/system_bus.h"

#include <QCoreApplication>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class NetworkValuesTest : public RunningService {
protected:
    NetworkValuesTest() {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", bus_.address());
        addChannel(u"a"_s, generatedFeed(3, 1));
        for (const QString &call : {u"auto add a"_s, u"setting UpdateInterval 6"_s,
                                    u"setting UpdateMode 1"_s, u"setting Status 536871424"_s})
            ok(call); // roaming, and another program's bit
    }

    void waitForValue(const QString &name, const QString &value) {
        waitFor([&] { return run(u"setting "_s + name).out.trimmed() == value; });
    }
    QString nextTry() { return ok(u"updates"_s).trimmed().section(u'\t', 3); }

    int argumentCount_ = 0;
    QCoreApplication application_{argumentCount_, nullptr};
    PrivateBus bus_;
};

TEST_F(NetworkValuesTest, ABarredRoundIsMadeUpOnceTheNetworkAllowsIt) {
    for (const QString &call :
         {u"setting ACTOPTION 1"_s, u"setting NoRoaming 1"_s, u"setting Cradled 1"_s})
        ok(call);
    NetworkManager network(bus_.address());
    network.set(70, 1);
    network.begin();
    ModemManager modems(bus_.address());
    modems.set(0, 11, 1);
    modems.begin();
    start();
    waitForValue(u"Cradled"_s, u"0"_s);
    waitForValue(u"Status"_s, u"536870912"_s);
    EXPECT_EQ(nextTry(), u"waiting: roaming, or a metered connection");
    modems.set(0, 11, 5);
    waitForValue(u"Status"_s, u"536871424"_s);
    network.set(70, 4);
    waitForValue(u"Cradled"_s, u"1"_s);
    EXPECT_EQ(nextTry(), u"waiting: roaming, or a metered connection");
    EXPECT_EQ(server_.requests().size(), 0);
    modems.set(0, 11, 1);
    waitForRequests(1);
    waitFor([&] { return nextTry().startsWith(u"20"_s); });
    network.set(70, 1);
    waitForValue(u"Cradled"_s, u"0"_s);
    network.set(70, 2);
    waitForValue(u"Cradled"_s, u"1"_s);
    EXPECT_EQ(server_.requests().size(), 1);
}

TEST_F(NetworkValuesTest, ARoundThatReachedNoServerIsRunAgainWhenThereIsANetwork) {
    ok(u"relink a http://127.0.0.1:1/"_s);
    NetworkManager network(bus_.address());
    network.set(70, 1);
    network.begin();
    start();
    waitFor([&] { return ok(u"updates"_s).contains(u"1007"); });
    ok(u"relink a "_s + server_.url(u"/a"));
    network.set(70, 2);
    waitForRequests(1);
}

TEST_F(NetworkValuesTest, WithoutTheDaemonsTheValuesStay) {
    start();
    waitForRequests(1);
    EXPECT_EQ(ok(u"setting Status"_s), u"536871424\n");
    EXPECT_FALSE(run(u"setting Cradled"_s).err.isEmpty()) << "it is not set";
}

} // namespace
} // namespace tidebrook
