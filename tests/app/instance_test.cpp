#include "app/device_opening.h"
#include "app/instance.h"
#include "platform/file_lock.h"
#include "platform/service.h"
#include "res/default_channels.h"
#include "res/strings.h"
#include "store/provisioning.h"
#include "store/store_check.h"
#include "support/test_device.h"
#include "ui/kit/list_view.h"
#include "ui/session.h"

#include <QApplication>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <optional>
#include <thread>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The whole reader in this process, over a new device.
class InstanceTest : public testing::Test {
protected:
    InstanceTest() {
        provisionDevice(root_, defaultChannelsFile(),
                        todayItemKey(resourceString(todayItemNameString)));
    }
    ~InstanceTest() override { stopService(root_, 10s); }

    static ScreenStack *window() {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *stack = qobject_cast<ScreenStack *>(widget))
                return stack;
        }
        return nullptr;
    }

    /// Runs the reader for a user, and closes its window when he is done.
    static bool run(const DeviceRoot &root, const std::function<void(User &)> &user) {
        SingleInstance single(root);
        single.claim(10s);
        DeviceOpening opening(root);
        Instance instance(opening, single);
        User someone(*window());
        std::thread hands([&] {
            user(someone);
            someone.closeWindow();
        });
        const bool isRun = instance.InitInstance();
        hands.join();
        return isRun;
    }

    void overwrite(const QString &name, const QByteArray &content) {
        ASSERT_TRUE(writeFile(root_.filePath(name), content));
    }

    QTemporaryDir folder_;
    const DeviceRoot root_{folder_.filePath(u"device"_s)};
};

TEST_F(InstanceTest, OnBadGroundTheScreensOpenAndTellWhatIsWrong) {
    struct Case {
        const char *what;
        std::function<void()> spoil;
        DeviceRoot root;
        int textId; // 0: nothing is wrong
    };
    const DeviceRoot nowhere(folder_.filePath(u"file/device"_s));
    ASSERT_TRUE(writeFile(folder_.filePath(u"file"_s), "x"));
    const QString lock = root_.filePath(u"\\run\\channels.lock");
    std::optional<FileLock> rival;
    const std::array cases{
        Case{"a sound device", [] {}, root_, 0},
        Case{"a rival that never lets go", [&] { rival.emplace(lock); }, root_, 0},
        Case{"no root", [] {}, nowhere, fileProblemString},
        Case{"a damaged database", [&] { overwrite(u"RSSVault.sdf"_s, QByteArray(8192, 'x')); },
             root_, databaseProblemString},
        Case{"no database and no seed",
             [&] {
                 QFile::remove(root_.filePath(u"RSSVault.sdf"));
                 QFile::remove(root_.filePath(u"\\windows\\RSSChannels.txt"));
             },
             root_, fileProblemString},
        Case{"a damaged registry", [&] { overwrite(u"registry.db"_s, QByteArray(8192, 'x')); },
             root_, fileProblemString},
    };
    for (const Case &ground : cases) {
        SCOPED_TRACE(ground.what);
        stopService(root_, 10s);
        ground.spoil();
        EXPECT_TRUE(run(ground.root, [&](User &user) {
            if (ground.textId == 0) {
                ASSERT_TRUE(user.sees([&] { return user.list() && user.list()->rowCount() > 0; }));
                return;
            }
            ASSERT_TRUE(user.seesBox(resourceString(ground.textId)));
        }));
        rival.reset();
    }
}

TEST_F(InstanceTest, WhatIsUnderWayWhenTheWindowClosesIsDoneBeforeTheDatabaseIs) {
    QString first;
    EXPECT_TRUE(run(root_, [&](User &user) {
        ASSERT_TRUE(user.sees([&] { return user.list() && user.list()->rowCount() > 2; }));
        user.look([&] { first = user.list()->rowText(0); });
        FileLock rival(root_.filePath(u"\\run\\channels.lock"));
        user.press(Qt::Key_Delete);
        ASSERT_TRUE(user.seesBox(resourceString(deleteCategoryString)));
        user.tap(u"Yes"_s);
        ASSERT_TRUE(user.seesNoBox());
        user.closeWindow();
        std::this_thread::sleep_for(300ms); // the reader is to wait; it may take longer to do so
    }));
    EXPECT_FALSE(storedCategories(root_).contains(first));
    Registry registry(root_);
    EXPECT_EQ(checkStore(root_, registry), QStringList()) << "its channels have gone with it";
}

TEST_F(InstanceTest, AWindowThatIsClosedWhileTheDeviceOpensShowsNoScreen) {
    auto rival = std::make_unique<FileLock>(root_.filePath(u"\\run\\channels.lock"));
    EXPECT_FALSE(run(root_, [&](User &user) {
        ASSERT_TRUE(user.sees([&] { return user.stack().isVisible(); }));
        user.closeWindow();
        ASSERT_TRUE(user.sees([&] { return user.stack().isClosing(); }));
        rival.reset();
    }));
}

TEST(DevicePartsTest, SeedCategoriesWhereThereAreNoneAndListThoseOfChannels) {
    TestDevice device(u"Planet\thttp://example.org/a\tNews\n"
                      u"Moon\thttp://example.org/b\tScience\n"
                      u"Star\thttp://example.org/c\tScience\n"_s);
    CategoryListStore categories(*device.registry);
    const auto expectStarted = [&](const QStringList &expected) {
        DeviceParts(device.root).open();
        EXPECT_EQ(categories.listedCategories(), expected);
    };
    expectStarted({u"News"_s, u"Science"_s});
    ASSERT_TRUE(device.store->Open());
    device.store->DeleteCategoryChannels(u"News"_s);
    categories.DeleteCategory(u"News"_s);
    device.store->MoveChannel(u"Moon"_s, u"Sport"_s); // as a change that was cut short
    expectStarted({u"Science"_s, u"Sport"_s});
    for (const QString &category : {u"Science"_s, u"Sport"_s}) {
        device.store->DeleteCategoryChannels(category);
        categories.DeleteCategory(category);
    }
    expectStarted({u"News"_s, u"Science"_s});
    EXPECT_EQ(device.channelNames(u"Science"_s), QStringList()) << "their channels do not return";
}

} // namespace
} // namespace tidebrook
