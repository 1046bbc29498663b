#include "ui/sharing_test.h"

namespace tidebrook {
namespace {

const QString link = u"http://example.org/feed"_s;
const QString planet = u"Planet http://example.org/a"_s;
const QString moon = u"Moon "_s + link;
const QString odd = u"Odd "_s + link;
const QString star = u"Star http://example.org/b"_s;

class PropertiesTest : public SharingTest {
protected:
    /// Opens the dialog over the second channel of Science.
    static void open(User &user, bool isAutoUpdated = false) {
        user.press(Qt::Key_Down);
        user.choose({u"Properties"_s});
        ASSERT_TRUE(
            user.seesControls({u"Odd"_s, link, u"News [Science] Travel"_s,
                               (isAutoUpdated ? u"x "_s : u"- "_s) + u"Auto update this channel"}));
    }
    static void tick(User &user) { user.tap(u"Auto update this channel"_s); }
};

struct Change {
    bool isAutoUpdated = false;
    bool isMoved = false; ///< to News
    bool isTicked = false;
    QString name = {};     ///< what is typed; null where it is left alone
    QString address = {};  ///< the same
    QString channel = odd; ///< afterwards
    QStringList automatic = {};
};

const QString listed = odd + u" Science";
const QString luna = u"Luna "_s + link;
const QString longName(49, u'n');
const QString longLink = u"http://x/"_s + QString(502, u'l');

const Change changes[] = {
    {.isAutoUpdated = true, .automatic = {listed}},
    {.isTicked = true, .automatic = {listed}},
    {.isAutoUpdated = true, .isTicked = true},
    {.isMoved = true,
     .isTicked = true,
     .name = u"Luna's"_s,
     .address = u"ftp://New/"_s,
     .channel = u"Luna's ftp://New/"_s,
     .automatic = {u"Luna's "_s + link + u" News"}}, // with the old address
    {.isAutoUpdated = true, .name = u"Luna"_s, .channel = luna, .automatic = {luna + u" Science"}},
    {.isTicked = true, .name = u"Luna  "_s, .channel = luna, .automatic = {luna + u" Science"}},
    {.isAutoUpdated = true, .isTicked = true, .name = u"Planet"_s}, // which is taken
    {.name = u""_s, .address = u""_s, .channel = u" "_s},
    {.isAutoUpdated = true,
     .name = u"\uFEFF"_s + longName.first(47) + u"😀",
     .channel = longName.first(47) + u' ' + link,
     .automatic = {longName.first(47) + u' ' + link + u" Science"}},
    {.name = longName + u'n',
     .address = longLink + u'l',
     .channel = longName + u' ' + longLink.first(510)},
};

class EachChange : public PropertiesTest, public testing::WithParamInterface<Change> {};

TEST_P(EachChange, IsMadeAndNothingElse) {
    const Change &change = GetParam();
    if (change.isAutoUpdated)
        updateByItself(u"Odd"_s, u"Science"_s);
    QStringList news{planet};
    QStringList science{moon, star};
    (change.isMoved ? news : science).append(change.channel);
    const QString name = change.channel.section(u' ', 0, 0);
    runInScience([&](User &user) {
        open(user, change.isAutoUpdated);
        for (const auto &[typed, limit] :
             {std::pair(change.name, longName.size()), {change.address, longLink.size()}}) {
            if (!typed.isNull()) {
                user.replace(typed);
                ASSERT_TRUE(user.seesEditor(typed.left(limit)));
            }
            user.press(Qt::Key_Tab);
        }
        if (change.isMoved)
            user.press(Qt::Key_Up);
        if (change.isTicked)
            tick(user);
        user.tap(u"Done"_s);
        ASSERT_TRUE(user.sees([&] {
            return user.list() && (user.list()->findRow(name) < 0) == change.isMoved;
        }) && user.seesQuiet());
    });
    for (QStringList *list : {&news, &science})
        list->sort();
    EXPECT_EQ(channels(u"News"_s), news);
    EXPECT_EQ(channels(u"Science"_s), science);
    EXPECT_EQ(device.titles(name).size(), 4) << "the articles go with it";
    EXPECT_EQ(automatic(), change.automatic);
}

INSTANTIATE_TEST_SUITE_P(Properties, EachChange, testing::ValuesIn(changes));

TEST_F(PropertiesTest, WhatIsOnlyShownStaysAsItIs) {
    const QString name(50, u'n');
    const QString address = u"http://example.org/"_s + QString(493, u'l');
    device.store->InsertChannel({u"Sciences"_s, name, address});
    CategoryListStore categories(*device.registry);
    categories.DeleteCategory(u"Science"_s);
    categories.AddCategory(u"Sciences"_s);
    categories.AddCategory(u"Science"_s); // behind one that begins with its name
    run([&](User &user) {
        for (const auto &[row, category] : {std::pair(2, u"Sciences"_s), {3, u"Science"_s}}) {
            user.tapRow(row);
            ASSERT_TRUE(user.seesCaption(category) && user.seesQuiet());
            user.choose({u"Properties"_s});
            ASSERT_TRUE(user.seesCaption(u"Tidebrook"_s) && user.seesQuiet());
            tick(user);
            user.tap(u"Done"_s);
            ASSERT_TRUE(user.seesCaption(category) && user.seesQuiet());
            user.press(Qt::Key_Escape);
            ASSERT_TRUE(user.seesCaption(u"All Categories"_s) && user.seesQuiet());
        }
    });
    EXPECT_EQ(channels(u"Sciences"_s), QStringList(name + u' ' + address));
    EXPECT_EQ(device.channelNames(u"Science"_s).size(), 3);
    EXPECT_EQ(automatic().size(), 2);
}

TEST_F(PropertiesTest, ACancelledDialogAndAChangeThatFailsLeaveTheChannel) {
    runInScience([&](User &user) {
        open(user);
        user.replace(u"Luna"_s);
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesLines(scienceLines) && user.seesQuiet());
        user.press(Qt::Key_Up);
        open(user);
        user.press(Qt::Key_Tab);
        user.replace(u"http://example.org/it's"_s);
        user.press(Qt::Key_Return);
        expectBox(user, u"The URL format is wrong!"_s);
        ASSERT_TRUE(user.seesLines(scienceLines));
    });
    EXPECT_EQ(channels(u"Science"_s), QStringList({moon, odd, star}));
}

TEST_F(PropertiesTest, ACategoryThatHasGoneMeanwhileIsListedAgain) {
    runInScience([&](User &user) {
        open(user);
        device.store->DeleteChannel(u"Planet"_s);
        CategoryListStore(*device.registry).DeleteCategory(u"News"_s);
        user.press(Qt::Key_Tab);
        user.press(Qt::Key_Tab);
        user.press(Qt::Key_Up);
        user.tap(u"Done"_s);
        EXPECT_TRUE(user.seesRows({u"Moon"_s, u"Star"_s}) && user.seesQuiet());
    });
    EXPECT_EQ(channels(u"News"_s), QStringList(odd));
    EXPECT_TRUE(storedCategories(device.root).contains(u"News"_s));
}

} // namespace
} // namespace tidebrook
