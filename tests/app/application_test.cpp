#include "app/running_reader.h"
#include "platform/sync/file_lock.h"
#include "store/provisioning.h"
#include "ui/reading_test.h"

#include <optional>

namespace tidebrook {
namespace {

class ApplicationTest : public ReadingTest {
protected:
    const QString lock = device.root.filePath(u"\\run\\channels.lock");
    std::optional<FileLock> rival;
};

TEST_F(ApplicationTest, WhatIsUnderWayWhenTheWindowClosesIsDoneBeforeTheDatabaseIs) {
    EXPECT_TRUE(runReader(device.root, [&](User &user) {
        ASSERT_TRUE(user.seesRows(seeded) && user.seesQuiet());
        user.press(Qt::Key_Down);
        rival.emplace(lock);
        removeCategory(user);
        ASSERT_TRUE(user.seesNoBox());
        user.closeWindow();
        std::this_thread::sleep_for(300ms); // the reader is to wait; it may take longer to do so
        rival.reset();
    }));
    EXPECT_EQ(storedCategories(device.root), QStringList({u"News"_s, u"Travel"_s}));
    EXPECT_EQ(checkStore(device.root, *device.registry), QStringList()) << "with its channels";
}

TEST_F(ApplicationTest, AWindowThatIsClosedWhileTheDeviceOpensShowsNoScreen) {
    rival.emplace(lock);
    EXPECT_FALSE(runReader(device.root, [&](User &user) {
        ASSERT_TRUE(user.sees([&] { return user.stack().isVisible(); }));
        user.closeWindow();
        ASSERT_TRUE(user.sees([&] { return user.stack().isClosing(); }));
        rival.reset();
    }));
}

TEST_F(ApplicationTest, TheWindowOpensAsLargeAsItWasClosed) {
    constexpr QSize chosen(500, 600);
    EXPECT_TRUE(runReader(device.root, [&](User &user) {
        ASSERT_TRUE(user.seesRows(seeded) && user.seesQuiet());
        user.resize(chosen);
        ASSERT_TRUE(user.sees([&] { return user.stack().size() == chosen; }));
    }));
    for (const bool isSlow : {true, false}) {
        SCOPED_TRACE(isSlow);
        if (isSlow)
            rival.emplace(lock);
        EXPECT_TRUE(runReader(device.root, [&](User &user) {
            ASSERT_TRUE(user.sees([&] { return user.stack().isVisible(); }));
            rival.reset();
            EXPECT_TRUE(user.seesRows(seeded) &&
                        user.sees([&] { return user.stack().size() == chosen; }));
        }));
    }
}

TEST_F(ApplicationTest, AStartListsTheCategoriesOfChannels) {
    device.store->MoveChannel(u"Moon"_s, u"Sport"_s); // as a change that was cut short
    Device(device.root).open(5s);
    EXPECT_EQ(storedCategories(device.root), seeded + QStringList(u"Sport"_s));
}

TEST_F(ApplicationTest, ChannelsAreDeletedFromTheFirstStartOnByFingerAndByMouse) {
    const QStringList technology{u"Ars Technica"_s, u"Hacker News"_s, u"Phoronix"_s};
    const QTemporaryDir folder;
    const DeviceRoot root(folder.filePath(u"device"_s));
    ASSERT_TRUE(provisionDevice(root) && root.makeFolders());
    EXPECT_TRUE(runReader(root, [&](User &user) {
        const auto seesQuestion = [&user](const QString &channel) {
            user.touch(u"Delete Channel"_s);
            return user.seesBox(u"Are you sure you want to delete this channel?"_s, channel);
        };
        ASSERT_TRUE(user.seesRows({u"News"_s, u"Technology"_s, u"Science"_s}));
        ASSERT_TRUE(user.seesQuiet());
        user.touchRow(1);
        ASSERT_TRUE(user.seesRows(technology) && user.seesQuiet());
        user.touchRow(2, -60); // which selects nothing
        user.holdRow(1);
        ASSERT_TRUE(seesQuestion(technology[1]));
        user.touch(u"Yes"_s);
        ASSERT_TRUE(user.seesRows({technology[0], technology[2]}) && user.seesQuiet());
        user.clickRight(1);
        ASSERT_TRUE(user.seesPopup() && seesQuestion(technology[2]));
        user.tap(u"Yes"_s);
        EXPECT_TRUE(user.seesRows(technology.first(1)));
    }));
}

} // namespace
} // namespace tidebrook
