#include "app/base/messages.h"
#include "app/base/text_screens.h"
#include "res/commands.h"
#include "res/strings.h"
#include "support/test_device.h"
#include "ui/kit/dialog.h"
#include "ui/kit/list_view.h"
#include "ui/session.h"

#include <QTest>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

const QString seed = u"Planet\thttp://example.org/a\tNews\n"
                     u"Moon\thttp://example.org/b\tScience\n"_s;

// Work ends, and keys are pressed, at any moment: also when something else came to the front.
class WaitingCommandsTest : public testing::Test {
protected:
    bool run(const std::function<void(User &)> &user) {
        return session_.run([&](User &someone) {
            ASSERT_TRUE(someone.seesRows({u"News"_s, u"Science"_s}));
            user(someone);
        });
    }
    Dialog &dialog() { return *qobject_cast<Dialog *>(session_.stack().top()); }

    TestDevice device_{seed};
    Session session_{device_.root};
};

TEST_F(WaitingCommandsTest, ARefreshWaitsBehindABoxAndLeavesItTheKeys) {
    EXPECT_TRUE(run([&](User &user) {
        CategoryListStore(*device_.registry).AddCategory(u"Sport"_s);
        user.act([&] {
            dialog().post(CommandRefreshCategories);
            ShowMessage(session_.state(), warningString, nameExistsString);
        });
        ASSERT_TRUE(user.seesBox(resourceString(nameExistsString)));
        ASSERT_TRUE(user.seesQuiet());
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesCaption(resourceString(allCategoriesString)));
        EXPECT_TRUE(user.seesRows({u"News"_s, u"Science"_s, u"Sport"_s}));
    }));
}

TEST_F(WaitingCommandsTest, AKeyPressedTwiceInAMomentAsksOnce) {
    EXPECT_TRUE(run([&](User &user) {
        user.act([&] {
            ListView *list = user.list();
            QTest::keyClick(list, Qt::Key_Delete);
            QTest::keyClick(list, Qt::Key_Delete);
        });
        ASSERT_TRUE(user.seesBox(resourceString(deleteCategoryString)));
        user.tap(u"Yes"_s);
        ASSERT_TRUE(user.seesRows({u"Science"_s}));
        ASSERT_TRUE(user.seesQuiet());
        EXPECT_TRUE(user.seesNoBox());
        EXPECT_EQ(user.rows(), QStringList({u"Science"_s}));
    }));
}

TEST_F(WaitingCommandsTest, TheWindowClosesThroughWhateverLiesAboveTheScreens) {
    EXPECT_TRUE(run([&](User &user) {
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesCaption(u"News"_s));
        for (const int text : {nameExistsString, noChannelSelectedString}) {
            user.act([&, text] {
                showHelp(session_.state());
                ShowMessage(session_.state(), warningString, text); // opens no more
            });
            user.act([&, text] { ShowMessage(session_.state(), warningString, text); });
            ASSERT_TRUE(user.seesBox(resourceString(text)));
        }
    }));
}

} // namespace
} // namespace tidebrook
