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
        user.press(Qt::Key_A, Qt::ControlModifier);
    }
};

struct Change {
    const char *what;
    Hand hand; ///< begins in the name, all of which is selected
    bool isAutoUpdated;
    QString news;    ///< the channel afterwards in News, if it is there
    QString science; ///< the same
    QStringList automatic;
};

void tick(User &user) { user.tap(u"Auto update this channel"_s); }

void put(User &user, const QString &text) {
    user.press(Qt::Key_A, Qt::ControlModifier);
    text.isEmpty() ? user.press(Qt::Key_Delete) : user.paste(text);
}

/// Puts a name and, unless it is null, an address.
Hand putting(const QString &name, const QString &address, const Hand &further = {}) {
    return [=](User &user) {
        put(user, name);
        if (!address.isNull()) {
            user.press(Qt::Key_Tab);
            put(user, address);
        }
        if (further)
            further(user);
    };
}

const QString line = odd + u" Science";
const QString luna = u"Luna "_s + link;
const QString longName(49, u'n');
const QString longLink = u"http://x/"_s + QString(502, u'l');

const Change changes[] = {
    {"nothing", [](User &) {}, true, {}, odd, {line}},
    {"the tick", tick, false, {}, odd, {line}},
    {"the tick away", tick, true, {}, odd, {}},
    {"all at once, and the automatic updates get the old address",
     putting(u"Luna's"_s, u"ftp://New/"_s,
             [](User &user) {
                 user.press(Qt::Key_Tab);
                 user.press(Qt::Key_Up);
                 tick(user);
             }),
     false,
     u"Luna's ftp://New/"_s,
     {},
     {u"Luna's "_s + link + u" News"}},
    {"a new name keeps the automatic updates",
     putting(u"Luna"_s, {}),
     true,
     {},
     luna,
     {luna + u" Science"}},
    {"blanks behind a name are none",
     putting(u"Luna  "_s, {}, tick),
     false,
     {},
     luna,
     {luna + u" Science"}},
    {"a name that is taken, and the tick away", putting(u"Planet"_s, {}, tick), true, {}, odd, {}},
    {"no name and no address", putting(u""_s, u""_s), false, {}, u" "_s, {}},
    {"as long as they can be",
     putting(longName + u'n', longLink + u'l',
             [](User &user) {
                 EXPECT_TRUE(user.seesControls({longName, longLink, u"News [Science] Travel"_s,
                                                u"- Auto update this channel"_s}));
             }),
     false,
     {},
     longName + u' ' + longLink.first(510),
     {}},
};

class EachChange : public PropertiesTest, public testing::WithParamInterface<Change> {};

TEST_P(EachChange, IsMadeAndNothingElse) {
    const Change &change = GetParam();
    SCOPED_TRACE(change.what);
    isAutoUpdated(device.root, u"Odd"_s); // which makes the list
    if (change.isAutoUpdated)
        updateByItself(u"Odd"_s, u"Science"_s);
    QStringList news{planet};
    QStringList science{moon, star};
    (change.news.isNull() ? science : news).append(change.news + change.science);
    const QString name = QString(change.news + change.science).section(u' ', 0, 0);
    runInScience([&](User &user) {
        open(user, change.isAutoUpdated);
        change.hand(user);
        user.tap(u"Done"_s);
        const bool isHere = science.size() == 3;
        ASSERT_TRUE(user.sees([&] {
            return user.list() != nullptr && (user.list()->findRow(name) >= 0) == isHere;
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
        for (const auto &[row, first] : {std::pair(2, name), std::pair(3, u"Moon"_s)}) {
            user.tapRow(row);
            ASSERT_TRUE(user.sees([&user, channel = first] {
                return user.list() != nullptr && user.list()->findRow(channel) == 0;
            }));
            user.choose({u"Properties"_s});
            ASSERT_TRUE(user.sees([&user] { return user.list() == nullptr; }));
            ASSERT_TRUE(user.seesQuiet());
            tick(user);
            user.tap(u"Done"_s);
            ASSERT_TRUE(user.sees([&user] { return user.list() != nullptr; }) && user.seesQuiet());
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
        user.type(u"Luna"_s);
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesLines(scienceLines) && user.seesQuiet());
        user.press(Qt::Key_Up);
        open(user);
        putting(u"Odd"_s, u"http://example.org/it's"_s)(user);
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
