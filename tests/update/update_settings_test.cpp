#include "platform/sync/named_event.h"
#include "support/full_disk.h"
#include "test_device/test_device.h"
#include "update/update_settings.h"

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

TEST(UpdateSettings, AreStoredWholeOrNotAtAllAndTheTodayItemIsToldOfWhatIsStored) {
    TestDevice device;
    SettingsStore settings(*device.registry);
    NamedEvent told(device.root, u"TODAYITEMS", NamedEvent::Reset::Auto);
    const AutoUpdatePageValues automatic{1, 2, 3, true, true};
    EXPECT_TRUE(
        saveTodayPage(device.root, settings, testTodayKey, {.isEnabled = true, .timer = 2}));
    EXPECT_TRUE(told.test());
    EXPECT_TRUE(saveAutoUpdatePage(settings, automatic));
    {
        const FullDisk full;
        EXPECT_FALSE(saveTodayPage(device.root, settings, testTodayKey, {}));
        EXPECT_FALSE(saveAutoUpdatePage(settings, {}));
    }
    EXPECT_FALSE(told.test());
    const TodayPageValues today = readTodayPage(settings, testTodayKey);
    EXPECT_TRUE(today.isEnabled && today.timer == 2);
    const AutoUpdatePageValues stored = readAutoUpdatePage(settings);
    EXPECT_TRUE(stored.mode == 1 && stored.interval == 2 && stored.time == 3);
    EXPECT_TRUE(stored.needsCradle == true && stored.noRoaming == true);
    // A value of a wrong type is none, and what comes behind it is not shown.
    device.registry->write(programKey, u"UpdateTime", QStringLiteral("text"));
    EXPECT_FALSE(readAutoUpdatePage(settings).time || readAutoUpdatePage(settings).noRoaming);
}

} // namespace
} // namespace tidebrook
