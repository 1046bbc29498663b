#include "kit/layer.h"
#include "ui/reading_test.h"

namespace tidebrook {
namespace {

using CategoryListTest = ReadingTest;

TEST_F(CategoryListTest, EveryWayLeadsToItsScreenAndEveryWayBackLeadsBack) {
    const struct {
        const char *name;
        Hand go;
        QString caption;
        Hand leave;
    } rounds[]{
        {"Enter", pressing(Qt::Key_Return), u"Science"_s, tapping(u"Category List"_s)},
        {"number block", pressing(Qt::Key_Enter), u"Science"_s, pressing(Qt::Key_Escape)},
        {"tap", [](User &user) { user.tapRow(1); }, u"Science"_s, pressing(Qt::Key_Back)},
        {"finger", [](User &user) { user.touchRow(1); }, u"Science"_s,
         pressing(Qt::Key_Left, Qt::AltModifier)},
        {"F1", pressing(Qt::Key_F1), u"Tidebrook"_s, pressing(Qt::Key_Escape)},
        {"help key", pressing(Qt::Key_Help), u"Tidebrook"_s, tapping(u"Done"_s)},
        {"About", choosing({u"About"_s}), u"About"_s, pressing(Qt::Key_Escape)},
        {"Help of About",
         [](User &user) {
             user.choose({u"About"_s});
             ASSERT_TRUE(user.seesCaption(u"About"_s));
             user.tap(u"Help"_s);
         },
         u"Tidebrook"_s,
         [](User &user) {
             user.tap(u"Done"_s);
             ASSERT_TRUE(user.seesCaption(u"About"_s));
             user.tap(u"Done"_s);
         }},
        {"Setting", choosing({u"Setting"_s}), u"Today Setting"_s, tapping(u"Cancel"_s)},
    };
    run([&](User &user) {
        for (const auto &round : rounds) {
            SCOPED_TRACE(round.name);
            ASSERT_TRUE(user.seesRows(seeded) && user.seesQuiet() && user.seesSelected(0));
            user.press(Qt::Key_Down);
            round.go(user);
            ASSERT_TRUE(user.seesCaption(round.caption));
            round.leave(user);
            ASSERT_TRUE(user.seesCaption(u"All Categories"_s));
            user.press(Qt::Key_Up);
        }
        for (const Hand &open : {pressing(Qt::Key_Menu), tapping(u"Menu"_s)}) {
            open(user);
            ASSERT_TRUE(user.seesPopup());
            user.press(Qt::Key_Escape);
        }
        user.press(Qt::Key_S);
        EXPECT_TRUE(user.seesSelected(1)) << "a first letter finds its row";
        user.choose({u"Exit"_s});
        EXPECT_TRUE(user.sees([&user] { return user.stack().top() == nullptr; }));
    });
}

TEST_F(CategoryListTest, NewCategoriesGetNamesOfTheirOwn) {
    const QStringList names{u"New Category"_s, u"New Category (0)"_s, u"New Category (1)"_s};
    QStringList all = seeded;
    run([&](User &user) {
        for (const QString &name : names) {
            user.choose({u"New Category"_s});
            ASSERT_TRUE(user.seesEditor(name));
            user.press(Qt::Key_Return);
            all.prepend(name);
            EXPECT_TRUE(user.seesRows(all));
        }
        user.press(Qt::Key_F2);
        ASSERT_TRUE(user.seesEditor(all[0]));
        user.press(Qt::Key_A);
        user.press(Qt::Key_Back);
        EXPECT_TRUE(user.seesRows(all) && user.seesQuiet());
    });
    EXPECT_EQ(storedCategories(device.root), seeded + names);
}

TEST_F(CategoryListTest, ANameIsTheOneThatWasMeantAndTheChannelsKeepTheirCategory) {
    const QString emoji = u"\U0001F600"_s;
    const struct {
        QString typed;
        QString name = {}; // null: it keeps its own
    } namings[]{
        {u"Science"_s},
        {u""_s},
        {u"  News "_s},
        {u"  Maths  "_s, u"Maths"_s},
        {u"news"_s, u"news"_s},
        {QString(60, u'x'), QString(39, u'x')},
        {emoji.repeated(39), emoji.repeated(19)},
        {u"Bob's '; DROP TABLE RSSRecord --"_s, u"Bob's '; DROP TABLE RSSRecord --"_s},
        {u"100%1 & <b>more</b> \\"_s, u"100%1 & <b>more</b> \\"_s},
        {u"a\tb\nc\r"_s, u"a b c"_s},
        {u"   "_s, u""_s},
    };
    run([&](User &user) {
        QStringList all = seeded;
        for (const auto &[typed, name] : namings) {
            SCOPED_TRACE(typed.toStdString());
            const QStringList channels = device.channelNames(all[1]);
            user.press(Qt::Key_Home);
            user.press(Qt::Key_Down);
            user.press(Qt::Key_F2);
            ASSERT_TRUE(user.seesEditor(all[1]));
            typed.isEmpty() ? user.press(Qt::Key_Delete) : user.paste(typed);
            user.press(typed == u"news" ? Qt::Key_Tab : Qt::Key_Return);
            if (typed.contains(u"News"))
                expectBox(user, u"The name is exist!"_s);
            if (!name.isNull()) { // a renamed one goes to the end
                all.removeAt(1);
                all.append(name);
            }
            EXPECT_TRUE(user.seesRows(all) && user.seesQuiet());
            EXPECT_EQ(storedCategories(device.root), all);
            user.tapRow(name.isNull() ? 1 : 2);
            EXPECT_TRUE(user.seesRows(channels));
            user.press(Qt::Key_Escape);
            ASSERT_TRUE(user.seesCaption(u"All Categories"_s) && user.seesQuiet());
        }
    });
}

TEST_F(CategoryListTest, ADeletedCategoryIsGoneWithItsChannelsAndOnlyAfterAYes) {
    const QStringList left = seeded.first(1);
    updateByItself(u"Moon"_s, u"Science"_s);
    updateByItself(u"Planet"_s, u"News"_s);
    run([&](User &user) {
        user.press(Qt::Key_Down);
        for (const Hand &say :
             {tapping(u"No"_s), pressing(Qt::Key_Return), pressing(Qt::Key_Escape)}) {
            askToDelete(user);
            say(user);
            ASSERT_TRUE(user.seesNoBox() && user.seesQuiet());
            EXPECT_EQ(user.rows(), seeded);
        }
        user.choose({u"Delete"_s});
        ASSERT_TRUE(user.seesBox(deleteCategory));
        user.tap(u"Yes"_s);
        EXPECT_TRUE(user.seesRows({u"News"_s, u"Travel"_s}));
        EXPECT_TRUE(user.seesSelected(1)) << "the row that came into the place of the deleted one";
        removeCategory(user);
        ASSERT_TRUE(user.seesRows(left));
        ASSERT_TRUE(user.seesSelected(-1)) << "there is no row in the place of the last";
        for (const Hand &act :
             {pressing(Qt::Key_Return), pressing(Qt::Key_F2), choosing({u"Rename"_s}),
              choosing({u"Update"_s}), choosing({u"Export Category"_s})}) {
            act(user);
            expectBox(user, u"No category selected!"_s);
        }
        user.press(Qt::Key_Delete);
        EXPECT_TRUE(user.seesQuiet() && user.seesNoBox());
        EXPECT_EQ(user.rows(), left);
        user.tapBelowRows();
        EXPECT_TRUE(user.seesSelected(0) && user.seesCaption(u"All Categories"_s));
    });
    EXPECT_EQ(storedCategories(device.root), left);
    EXPECT_EQ(device.channelNames(u"Science"_s) + device.titles(u"Moon"_s), QStringList());
    EXPECT_EQ(device.channelNames(u"News"_s), QStringList(u"Planet"_s));
    EXPECT_EQ(automatic(), QStringList(u"Planet http://example.org/feed News"_s));
    EXPECT_EQ(setting(u"UnreadItems", testTodayKey), 0U);
    EXPECT_EQ(checkStore(device.root, *device.registry), QStringList());
}

TEST_F(CategoryListTest, WhatIsDoneQuicklyIsDoneToTheRowThatIsMeant) {
    run([&](User &user) {
        // A new one that keeps its name, opened at once.
        user.choose({u"New Category"_s});
        ASSERT_TRUE(user.seesEditor(u"New Category"_s));
        user.press(Qt::Key_Escape);
        user.tapRow(0);
        EXPECT_TRUE(user.seesCaption(u"New Category"_s));
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesRows(seeded + QStringList{u"New Category"_s}) && user.seesQuiet());

        // What is being typed stays when the list is refreshed.
        user.press(Qt::Key_Down);
        closeGate(user, &AppState::changes);
        user.choose({u"Font Size"_s, u"Small"_s});
        typeName(user, u"Science"_s, u"Mat"_s);
        gate.release();
        ASSERT_TRUE(user.seesQuiet());
        EXPECT_TRUE(user.seesEditor(u"Mat"_s));
        user.type(u"hs"_s);
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesRows({u"News"_s, u"Travel"_s, u"New Category"_s, u"Maths"_s}));
    });
    EXPECT_EQ(storedCategories(device.root),
              QStringList({u"News"_s, u"Travel"_s, u"New Category"_s, u"Maths"_s}));
    EXPECT_EQ(device.channelNames(u"Maths"_s), QStringList({u"Moon"_s, u"Odd"_s, u"Star"_s}));
}

TEST_F(CategoryListTest, WhatIsDeletedGoesAtOnceWhateverIsAtWork) {
    run([&](User &user) {
        closeGate(user, &AppState::changes);
        user.press(Qt::Key_Down);
        removeCategory(user);
        EXPECT_TRUE(user.seesRows({u"News"_s, u"Travel"_s}) && user.seesSelected(1));
        renameCategory(user, u"Travel"_s, u"Trip"_s);
        askToDelete(user);
        gate.release();
        ASSERT_TRUE(user.seesQuiet()) << "and the answer goes to the box";
        user.press(Qt::Key_Left);
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesRows({u"News"_s}) && user.seesQuiet() && user.seesNoBox());
    });
    EXPECT_EQ(storedCategories(device.root), QStringList{u"News"_s});
    EXPECT_EQ(checkStore(device.root, *device.registry), QStringList()) << "with all channels";
}

} // namespace
} // namespace tidebrook
