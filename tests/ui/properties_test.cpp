#include "ui/sharing_test.h"

#include "update/auto_list.h"

namespace tidebrook {
namespace {

const QString moonLink = u"http://example.org/feed"_s;

class PropertiesTest : public SharingTest {
protected:
    /// What the dialog shows of a channel of Science.
    static QStringList shown(const QString &name, const QString &link, bool isAutoUpdated,
                             const QString &categories = u"News [Science] Travel"_s) {
        return {name, link, categories,
                (isAutoUpdated ? u"x "_s : u"- "_s) + u"Auto update this channel"};
    }
    static void open(User &user) { user.choose({u"Properties"_s}); }

    /// The lines of the list of automatic updates.
    QStringList automatic() {
        QStringList lines;
        for (const RefreshJob &job : autoUpdatedChannels(device.root))
            lines.append(job.channelName + u' ' + job.url + u' ' + job.category);
        return lines;
    }
};

struct ChangeCase {
    const char *what;
    Hand hand; ///< begins in the name, all of which is selected
    bool isAutoUpdated;
    QStringList news;    ///< channels afterwards
    QStringList science; ///< the same
    QStringList automatic;
};

const QString planet = u"Planet http://example.org/a"_s;
const QString moon = u"Moon "_s + moonLink;
const QString odd = u"Odd "_s + moonLink;
const QString star = u"Star http://example.org/b"_s;
const QString moonLine = moon + u" Science";

void tick(User &user) { user.tap(u"Auto update this channel"_s); }

void typeLink(User &user, const QString &link) {
    user.press(Qt::Key_Tab);
    user.press(Qt::Key_A, Qt::ControlModifier);
    user.press(Qt::Key_Delete);
    user.type(link);
}

const ChangeCase changeCases[] = {
    {"nothing", [](User &) {}, true, {planet}, {moon, odd, star}, {moonLine}},
    {"the tick", tick, false, {planet}, {moon, odd, star}, {moonLine}},
    {"the tick away", tick, true, {planet}, {moon, odd, star}, {}},
    {"name, category and tick",
     [](User &user) {
         user.type(u"Luna's"_s);
         user.press(Qt::Key_Tab);
         user.press(Qt::Key_Tab);
         user.press(Qt::Key_Up);
         tick(user);
     },
     false,
     {u"Luna's "_s + moonLink, planet},
     {odd, star},
     {u"Luna's "_s + moonLink + u" News"}},
    {"address and tick: the automatic updates get the old one",
     [](User &user) {
         typeLink(user, u"ftp://Other/"_s);
         tick(user);
     },
     false,
     {planet},
     {u"Moon ftp://Other/"_s, odd, star},
     {moonLine}},
    {"a new name keeps the automatic updates",
     [](User &user) { user.type(u"Luna"_s); },
     true,
     {planet},
     {u"Luna "_s + moonLink, odd, star},
     {u"Luna "_s + moonLink + u" Science"}},
    {"blanks behind a name are none",
     [](User &user) {
         user.type(u"Luna  "_s);
         tick(user);
     },
     false,
     {planet},
     {u"Luna "_s + moonLink, odd, star},
     {u"Luna "_s + moonLink + u" Science"}},
    {"a name that is taken, and the tick away",
     [](User &user) {
         user.type(u"Planet"_s);
         tick(user);
     },
     true,
     {planet},
     {moon, odd, star},
     {}},
    {"no name and no address",
     [](User &user) {
         user.press(Qt::Key_Delete);
         typeLink(user, {});
     },
     false,
     {planet},
     {u" "_s, odd, star},
     {}},
};

class EachChange : public PropertiesTest, public testing::WithParamInterface<ChangeCase> {};

TEST_P(EachChange, IsMadeAndNothingElse) {
    const ChangeCase &change = GetParam();
    isAutoUpdated(device.root, u"Moon"_s);
    if (change.isAutoUpdated)
        setAutoUpdate(device.root, {moonLink, u"Moon"_s, u"Science"_s}, true);
    runInScience([&](User &user) {
        open(user);
        ASSERT_TRUE(user.seesControls(shown(u"Moon"_s, moonLink, change.isAutoUpdated)));
        user.press(Qt::Key_A, Qt::ControlModifier);
        change.hand(user);
        user.tap(u"Done"_s);
        QStringList names;
        for (const QString &channel : change.science)
            names.append(channel.section(u' ', 0, 0));
        ASSERT_TRUE(user.seesRows(names) && user.seesQuiet());
    });
    EXPECT_EQ(channels(u"News"_s), change.news);
    EXPECT_EQ(channels(u"Science"_s), change.science);
    EXPECT_EQ(automatic(), change.automatic);
}

INSTANTIATE_TEST_SUITE_P(Properties, EachChange, testing::ValuesIn(changeCases),
                         [](const auto &given) { return std::to_string(given.index); });

TEST_F(PropertiesTest, WhatIsOnlyShownStaysAsItIs) {
    const QString name(50, u'n');
    const QString link = u"http://example.org/"_s + QString(493, u'l');
    run([](User &) {});
    device.store->InsertChannel({u"Sciences"_s, name, link});
    CategoryListStore categories(*device.registry);
    categories.DeleteCategory(u"Science"_s);
    categories.AddCategory(u"Sciences"_s);
    categories.AddCategory(u"Science"_s); // behind one that begins with its name
    Session reader(device.root);
    EXPECT_TRUE(reader.run([&](User &user) {
        for (const auto &[row, first] : {std::pair(2, name), std::pair(3, u"Moon"_s)}) {
            ASSERT_TRUE(user.seesRows({u"News"_s, u"Travel"_s, u"Sciences"_s, u"Science"_s}));
            user.tapRow(row);
            ASSERT_TRUE(user.sees([&user, channel = first] {
                return user.list() != nullptr && user.list()->findRow(channel) == 0;
            }));
            open(user);
            ASSERT_TRUE(user.sees([&user] { return user.list() == nullptr; }));
            ASSERT_TRUE(user.seesQuiet());
            tick(user);
            user.tap(u"Done"_s);
            ASSERT_TRUE(user.sees([&user] { return user.list() != nullptr; }) && user.seesQuiet());
            user.press(Qt::Key_Escape);
            ASSERT_TRUE(user.seesCaption(u"All Categories"_s) && user.seesQuiet());
        }
    }));
    EXPECT_EQ(channels(u"Sciences"_s), QStringList(name + u' ' + link));
    EXPECT_EQ(device.channelNames(u"Science"_s).size(), 3);
    EXPECT_EQ(autoUpdatedChannels(device.root).size(), 2);
}

TEST_F(PropertiesTest, ACancelledDialogAndAChangeThatFailsLeaveTheChannel) {
    runInScience([&](User &user) {
        open(user);
        ASSERT_TRUE(user.seesControls(shown(u"Moon"_s, moonLink, false)));
        user.type(u"Luna"_s);
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesLines(scienceLines) && user.seesQuiet());
        open(user);
        ASSERT_TRUE(user.seesControls(shown(u"Moon"_s, moonLink, false)));
        user.press(Qt::Key_Tab);
        user.type(u"http://example.org/it's"_s);
        user.press(Qt::Key_Return);
        expectBox(user, u"The URL format is wrong!"_s);
        ASSERT_TRUE(user.seesLines(scienceLines));
    });
    EXPECT_TRUE(channels(u"Science"_s).contains(u"Moon "_s + moonLink));
}

} // namespace
} // namespace tidebrook
