#include "app/base/messages.h"
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
TEST(WaitingCommandsTest, WaitBehindABoxAndLeaveItTheKeys) {
    TestDevice device(seed);
    Session session(device.root);
    EXPECT_TRUE(session.run([&](User &user) {
        ASSERT_TRUE(user.seesRows({u"News"_s, u"Science"_s}) && user.seesQuiet());
        CategoryListStore(*device.registry).AddCategory(u"Sport"_s);
        user.act([&] {
            qobject_cast<Dialog *>(user.stack().top())->post(CommandRefreshCategories);
            ShowMessage(session.state(), warningString, nameExistsString);
        });
        ASSERT_TRUE(user.seesBox(resourceString(nameExistsString)) && user.seesQuiet());
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesRows({u"News"_s, u"Science"_s, u"Sport"_s}));
        user.act([&user] {
            for (int i = 0; i < 2; ++i) // a key that is pressed twice asks once
                QTest::keyClick(user.list(), Qt::Key_Delete);
        });
        ASSERT_TRUE(user.seesBox(resourceString(deleteCategoryString)));
        user.tap(u"Yes"_s);
        ASSERT_TRUE(user.seesRows({u"Science"_s, u"Sport"_s}) && user.seesQuiet());
        EXPECT_TRUE(user.seesNoBox() && user.seesRows({u"Science"_s, u"Sport"_s}));
    }));
}

} // namespace
} // namespace tidebrook
