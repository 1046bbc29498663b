#include "support/test_device.h"
#include "ui/session.h"

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

const QString seed = u"Planet\thttp://example.org/a\tNews\n"
                     u"Moon\thttp://example.org/b\tScience\n"
                     u"Star\thttp://example.org/c\tScience\n"_s;

QStringList storedCategories(const DeviceRoot &device) {
    Registry registry(device);
    return CategoryListStore(registry).listedCategories().value_or(QStringList());
}

TEST(CategoryListScreenTest, ACategoryIsAddedNamedAndKept) {
    TestDevice device(seed);
    Session session(device.root);
    EXPECT_TRUE(session.run([](User &user) {
        ASSERT_TRUE(user.seesRows({u"News"_s, u"Science"_s}));
        user.choose({u"New Category"_s});
        ASSERT_TRUE(user.seesEditor(u"New Category"_s));
        user.type(u"Sport"_s);
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesRows({u"News"_s, u"Science"_s, u"Sport"_s}));
    }));
    EXPECT_EQ(storedCategories(device.root), QStringList({u"News"_s, u"Science"_s, u"Sport"_s}));
}

} // namespace
} // namespace tidebrook
