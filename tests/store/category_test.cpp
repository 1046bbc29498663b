#include "store/category_list.h"
#include "store/seeding.h"
#include "store/store_check.h"
#include "test_device/test_device.h"

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class CategoryTest : public testing::Test {
protected:
    CategoryTest() {
        quint32 count = 0;
        SettingsStore(*device_.registry)
            .RegReadDword(programKey, u"CategoryNumber", count); // as a start does
    }

    QStringList names() {
        CategoryList list;
        return categories_.ReadCategoryList(list) ? list : QStringList(u"failed"_s);
    }

    TestDevice device_;
    CategoryListStore categories_{*device_.registry};
};

TEST_F(CategoryTest, ADamagedEntryIsTakenOutByTheReadThatMeetsIt) {
    categories_.AddCategory(u"good"_s);
    device_.registry->write(u"Software\\Tamrel\\Feedlark\\Categories", u"bad", u"text"_s);
    device_.registry->write(programKey, u"CategoryNumber", quint32{2});
    EXPECT_EQ(names(), QStringList(u"failed"_s));
    EXPECT_EQ(names(), (QStringList{u"good"_s, QString()}));
    device_.registry->write(programKey, u"CategoryNumber", quint32{0xFFFFFFFF});
    EXPECT_EQ(names().first(), u"good") << "a damaged count must not exhaust the memory";
}

TEST_F(CategoryTest, ACountThatIsTooSmallHidesNoCategoryThatIsToBeListed) {
    for (const QString &name : {u"A"_s, u"B"_s, u"C"_s})
        categories_.AddCategory(name);
    device_.registry->write(programKey, u"CategoryNumber", quint32{1});
    for (const QString &name : {u"C"_s, u"New"_s}) {
        EXPECT_TRUE(categories_.ensureListed(name));
        EXPECT_TRUE(names().contains(name)) << name.toStdString();
    }
}

TEST_F(CategoryTest, SeedingTakesEveryThirdFieldWithNoHeedToLines) {
    const QString path = device_.root.filePath(u"\\windows\\RSSChannels.txt");
    writeFile(path, utf16(u"\uFEFFa\tu\tOne \r\nb\tu\tTwo\nc\tu\tOne\r\nd\t\tu\tThree"_s));
    EXPECT_TRUE(seedCategories(device_.root, *device_.registry));
    EXPECT_EQ(names(), (QStringList{u"One"_s, u"Two"_s, u"Three"_s}));
}

TEST(Check, NamesEveryFault) {
    TestDevice device;
    ASSERT_TRUE(device.store->Open());
    CategoryListStore categories(*device.registry);
    device.registry->write(programKey, u"CategoryNumber", quint32{0});
    categories.AddCategory(u"C"_s);
    device.addChannel(u"C"_s, u"one"_s, {u"a"_s, u"b"_s});
    device.addChannel(u"C"_s, u"two"_s, {u"a"_s});
    EXPECT_EQ(checkStore(device.root, *device.registry), QStringList());

    device.store->changeAtOnce([](SqlCommand &command) {
        command.execute(
            "UPDATE RSSRecord SET READ_UNREAD = 1 WHERE CHANNEL_NAME='one' and TITLE='a'");
        command.execute(
            "UPDATE RSSRecord SET CATEGORY = 'X' WHERE CHANNEL_NAME='one' and TITLE='b'");
        command.execute("DELETE FROM RSSCHRecord WHERE CHANNEL_NAME='two'");
    });
    device.addChannel(u"Unlisted"_s, u"three"_s);
    device.registry->write(programKey, u"CategoryNumber", quint32{3});
    EXPECT_EQ(checkStore(device.root, *device.registry),
              (QStringList{u"categories: the count is 3, but 1 are listed"_s,
                           u"channel \"one\": counts 2/2, but has 1/2 articles"_s,
                           u"channel \"two\": missing, but has 1 articles"_s,
                           u"channel \"one\": 1 articles have another category"_s,
                           u"channel \"three\": its category \"Unlisted\" is not listed"_s}));
    device.store->changeAtOnce(
        [](SqlCommand &command) { command.execute("DROP INDEX PK_RECORD"); });
    EXPECT_EQ(checkStore(device.root, *device.registry).last(), u"database: an index is missing");
}

} // namespace
} // namespace tidebrook
