#include "platform/named_event.h"
#include "support/test_device.h"
#include "update/today_tap.h"

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

TEST(TodayTap, IsTakenOnceAndOnlyWhole) {
    TestDevice device;
    const QString key = testTodayKey.toString();
    NamedEvent tapped(device.root, u"CLKTODAY", NamedEvent::Reset::Auto);
    const auto tap = [&](const QString &title) {
        device.registry->write(key, u"CATEGORY", u"C"_s);
        device.registry->write(key, u"CHANNEL", QString(60, u'n'));
        device.registry->write(key, u"TITLE", title);
        tapped.set();
    };
    const auto take = [&] { return takeTodayTap(device.root, *device.registry, key); };

    EXPECT_FALSE(take());
    tap(u"A title"_s);
    const std::optional<TodayTap> taken = take();
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->category, u"C");
    EXPECT_EQ(taken->channel, QString(50, u'n'));
    EXPECT_EQ(taken->title, u"A title");
    EXPECT_FALSE(take()) << "one tap opens one article";

    tap(QString());
    EXPECT_FALSE(take());
    tap(u"A title"_s);
    EXPECT_TRUE(take()) << "a tap that came to nothing must not be left waiting";
}

} // namespace
} // namespace tidebrook
