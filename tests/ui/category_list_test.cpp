#include "platform/named_event.h"
#include "ui/kit/layer.h"
#include "ui/reading_test.h"

#include <QApplication>
#include <QScrollBar>
#include <QStyle>

#include <semaphore>

namespace tidebrook {
namespace {

class CategoryListTest : public ReadingTest {
protected:
    QStringList stored() const { return storedCategories(device.root); }
    /// The queue of changes does nothing until the gate is opened.
    void closeGate(User &user, WorkQueue &queue) {
        user.look([&] { queue.tell([this] { gate.acquire(); }); });
    }

    const QStringList science{u"Moon"_s, u"Odd"_s, u"Star"_s};
    std::counting_semaphore<> gate{0};
};

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
        for (const Hand &open :
             {pressing(Qt::Key_F10), pressing(Qt::Key_Menu), tapping(u"Menu"_s)}) {
            open(user);
            ASSERT_TRUE(user.seesPopup());
            user.press(Qt::Key_Escape);
            ASSERT_TRUE(user.sees([] { return QApplication::activePopupWidget() == nullptr; }));
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
        ASSERT_TRUE(user.seesQuiet());
        user.choose({u"New Category"_s});
        ASSERT_TRUE(user.seesEditor(u"New Category (2)"_s));
        user.type(u"Sport"_s);
        user.press(Qt::Key_Return);
        all = seeded + names + QStringList{u"Sport"_s};
        EXPECT_TRUE(user.seesRows(all));
    });
    EXPECT_EQ(stored(), all);
}

const QString emoji = u"\U0001F600"_s;
const QString old = u"Science"_s;

struct Naming {
    const char *what;
    QString typed;
    QString expected;
};
const Naming namings[]{
    {"another name", u"Maths"_s, u"Maths"_s},
    {"its own name", old, old},
    {"nothing", u""_s, old},
    {"taken", u"News"_s, old},
    {"taken, but for blanks", u"  News "_s, old},
    {"blanks around", u"  Maths  "_s, u"Maths"_s},
    {"blanks alone", u"   "_s, u""_s},
    {"another case", u"news"_s, u"news"_s},
    {"too long", QString(60, u'x'), QString(39, u'x')},
    {"39 emoji", emoji.repeated(39), emoji.repeated(19)},
    {"quotes", u"Bob's '; DROP TABLE RSSRecord --"_s, u"Bob's '; DROP TABLE RSSRecord --"_s},
    {"signs", u"100%1 & <b>more</b> \\"_s, u"100%1 & <b>more</b> \\"_s},
    {"tab and line end", u"a\tb\nc\r"_s, u"a b c"_s},
    {"right to left", u"חדשות (1)"_s, u"חדשות (1)"_s},
};

class EachName : public CategoryListTest, public testing::WithParamInterface<Naming> {};

TEST_P(EachName, IsTheOneThatWasMeantAndTheChannelsKeepTheirCategory) {
    const Naming &naming = GetParam();
    SCOPED_TRACE(naming.what);
    // A renamed one goes to the end.
    const QStringList all =
        naming.expected == old ? seeded : QStringList{u"News"_s, u"Travel"_s, naming.expected};
    run([&](User &user) {
        user.press(Qt::Key_Down);
        user.press(Qt::Key_F2);
        ASSERT_TRUE(user.seesEditor(old));
        if (naming.typed.isEmpty())
            user.press(Qt::Key_Delete);
        else
            user.paste(naming.typed);
        user.press(Qt::Key_Return);
        if (naming.typed.contains(u"News"))
            expectBox(user, u"The name is exist!"_s);
        EXPECT_TRUE(user.seesRows(all) && user.seesQuiet());
        user.tapRow(static_cast<int>(all.indexOf(naming.expected)));
        EXPECT_TRUE(user.seesRows(science));
    });
    EXPECT_EQ(stored(), all);
}

INSTANTIATE_TEST_SUITE_P(CategoryList, EachName, testing::ValuesIn(namings));

TEST_F(CategoryListTest, ADeletedCategoryIsGoneWithItsChannelsAndOnlyAfterAYes) {
    run([](User &user) {
        user.press(Qt::Key_Down);
        for (const Hand &say :
             {tapping(u"No"_s), pressing(Qt::Key_Return), pressing(Qt::Key_Escape)}) {
            user.press(Qt::Key_Delete);
            ASSERT_TRUE(user.seesBox(deleteCategory));
            say(user);
            ASSERT_TRUE(user.seesNoBox() && user.seesQuiet());
            EXPECT_EQ(user.rows(), seeded);
        }
        user.choose({u"Delete"_s});
        ASSERT_TRUE(user.seesBox(deleteCategory));
        user.tap(u"Yes"_s);
        EXPECT_TRUE(user.seesRows({u"News"_s, u"Travel"_s}));
        EXPECT_TRUE(user.seesSelected(1)) << "the row that came into the place of the deleted one";
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesCaption(u"Travel"_s) && user.seesRows({u"Comet"_s}));
    });
    EXPECT_EQ(stored(), QStringList({u"News"_s, u"Travel"_s}));
    EXPECT_EQ(device.channelNames(u"Science"_s) + device.titles(u"Moon"_s), QStringList());
    EXPECT_EQ(device.channelNames(u"News"_s), QStringList(u"Planet"_s));
    EXPECT_EQ(setting(u"UnreadItems", testTodayKey), 0U);
}

TEST_F(CategoryListTest, WithoutASelectionNothingIsDoneButWarned) {
    run([](User &user) {
        user.press(Qt::Key_End);
        user.press(Qt::Key_Delete);
        ASSERT_TRUE(user.seesBox(deleteCategory));
        user.tap(u"Yes"_s);
        ASSERT_TRUE(user.seesRows(seeded.first(2)));
        ASSERT_TRUE(user.seesSelected(-1)) << "there is no row in the place of the last";
        for (const Hand &act :
             {pressing(Qt::Key_Return), pressing(Qt::Key_F2), choosing({u"Rename"_s}),
              choosing({u"Update"_s}), choosing({u"Export Category"_s})}) {
            act(user);
            expectBox(user, u"No category selected!"_s);
        }
        user.press(Qt::Key_Delete);
        EXPECT_TRUE(user.seesQuiet() && user.seesNoBox());
        EXPECT_EQ(user.rows(), seeded.first(2));
        user.tapBelowRows();
        EXPECT_TRUE(user.seesSelected(0) && user.seesCaption(u"All Categories"_s));
    });
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

        // Renamed, and deleted under its new name; the answer goes to the box, whatever comes
        // behind it meanwhile.
        closeGate(user, session->state().changes);
        user.press(Qt::Key_F2);
        ASSERT_TRUE(user.seesEditor(u"News"_s));
        user.type(u"Old"_s);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesNoEditor());
        user.press(Qt::Key_Delete);
        ASSERT_TRUE(user.seesBox(deleteCategory));
        gate.release();
        ASSERT_TRUE(user.seesQuiet());
        user.press(Qt::Key_Left);
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesNoBox() && user.seesQuiet());
    });
    EXPECT_EQ(stored(), QStringList({u"Science"_s, u"Travel"_s, u"New Category"_s}));
    EXPECT_EQ(device.channelNames(u"Science"_s), science);
}

TEST_F(CategoryListTest, WhatIsBeingTypedStaysWhenTheListIsRefreshed) {
    run([](User &user) {
        user.press(Qt::Key_Down);
        user.press(Qt::Key_F2);
        ASSERT_TRUE(user.seesEditor(u"Science"_s));
        user.type(u"Sport"_s);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesNoEditor());
        user.press(Qt::Key_Up);
        user.press(Qt::Key_F2);
        ASSERT_TRUE(user.seesEditor(u"News"_s));
        user.type(u"Mat"_s);
        ASSERT_TRUE(user.seesQuiet());
        EXPECT_TRUE(user.seesEditor(u"Mat"_s));
        user.type(u"hs"_s);
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesRows({u"Travel"_s, u"Sport"_s, u"Maths"_s}));
    });
    EXPECT_EQ(device.channelNames(u"Sport"_s), science);
}

TEST_F(CategoryListTest, RowsMakeRoomForTheScrollBarWhereThereIsOne) {
    run([](User &) {}); // with which the categories come
    CategoryListStore categories(*device.registry);
    for (const auto &[screen, most] : {std::pair(QSize(300, 300), 4), std::pair(QSize(320, 240), 4),
                                       std::pair(QSize(240, 320), 6)}) {
        SCOPED_TRACE(screen.width());
        for (qsizetype i = stored().size(); i <= most; ++i)
            categories.AddCategory(u"C%1 %2"_s.arg(screen.width()).arg(i));
        const auto use = [&, rows = most](User &user) {
            const auto isRight = [&](int count, bool hasScrollBar) {
                return user.sees([&user, count, hasScrollBar] {
                    const ListView *list = user.list();
                    if (list == nullptr)
                        return false; // a box lies over it
                    const int bar =
                        list->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, list);
                    return list->rowCount() == count &&
                           list->columnWidth() ==
                               user.stack().width() - 2 - (hasScrollBar ? bar : 0) &&
                           list->verticalScrollBar()->isVisible() == hasScrollBar;
                });
            };
            EXPECT_TRUE(isRight(rows + 1, true));
            user.press(Qt::Key_Delete);
            ASSERT_TRUE(user.seesBox(deleteCategory));
            user.tap(u"Yes"_s);
            EXPECT_TRUE(isRight(rows, false));
            user.resize({user.stack().height(), user.stack().width()});
            EXPECT_TRUE(isRight(rows, rows == 6));
        };
        run(use, screen);
    }
}

TEST_F(CategoryListTest, AMovingFingerAndTheWheelScrollAndOpenNothing) {
    run([](User &) {});
    CategoryListStore categories(*device.registry);
    for (int i = 0; i < 60; ++i)
        categories.AddCategory(u"C%1"_s.arg(i));
    run([](User &user) {
        int before = 0;
        const auto seesScrolled = [&] {
            const auto place = [&user] { return user.list()->verticalScrollBar()->value(); };
            const bool isScrolled = user.sees([&] { return place() > before; });
            user.look([&] { before = place(); });
            return isScrolled;
        };
        user.turnWheel(1);
        EXPECT_TRUE(seesScrolled());
        user.touchRow(4, -120);
        EXPECT_TRUE(seesScrolled() && user.seesCaption(u"All Categories"_s));
        user.press(Qt::Key_End);
        for (const QSize &turned : {QSize(320, 240), QSize(240, 320)}) {
            user.resize(turned);
            EXPECT_TRUE(user.sees([&] {
                const ListView *list = user.list();
                return user.stack().top()->size() == turned &&
                       list->viewport()->rect().intersects(list->visualRect(list->currentIndex()));
            })) << "what is selected stays in sight";
        }
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesCaption(u"C59"_s));
    });
}

TEST_F(CategoryListTest, AHeadlineTappedTodayLeadsIntoItsCategoryOnceAndWaitsForWhatIsOpen) {
    NamedEvent tapped(device.root, u"CLKTODAY", NamedEvent::Reset::Auto);
    const auto tapHeadline = [&] {
        device.registry->write(testTodayKey, u"CATEGORY", u"Science"_s);
        device.registry->write(testTodayKey, u"CHANNEL", u"Sun"_s);
        device.registry->write(testTodayKey, u"TITLE", u"A title"_s);
        tapped.set();
    };
    // What is told of the tap comes late.
    const auto tapAndOpen = [&](User &user, int key) {
        closeGate(user, session->state().settings);
        tapHeadline();
        user.leaveAndReturn();
        user.press(key);
    };
    const auto leave = [&](User &user) {
        ASSERT_TRUE(user.seesCaption(u"Science"_s) && user.seesRows(science));
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesRows(seeded) && user.seesQuiet());
    };
    run([](User &) {});
    tapHeadline();
    session = std::make_unique<Session>(device.root); // tapped before the reader was started
    EXPECT_TRUE(session->run([&](User &user) {
        leave(user);
        user.leaveAndReturn();
        EXPECT_TRUE(user.seesQuiet() && user.seesCaption(u"All Categories"_s));

        tapAndOpen(user, Qt::Key_Delete);
        ASSERT_TRUE(user.seesBox(deleteCategory));
        gate.release();
        ASSERT_TRUE(user.seesQuiet());
        user.tap(u"No"_s);
        leave(user);

        tapAndOpen(user, Qt::Key_Return);
        ASSERT_TRUE(user.seesCaption(u"News"_s));
        gate.release();
        leave(user); // it also leads there from what was chosen meanwhile
    }));
}

} // namespace
} // namespace tidebrook
