#include "platform/named_event.h"
#include "support/test_device.h"
#include "ui/kit/list_view.h"
#include "ui/session.h"

#include <QApplication>
#include <QMenu>
#include <QScrollBar>
#include <QStyle>

#include <gtest/gtest.h>

#include <semaphore>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

const QString seed = u"Planet\thttp://example.org/a\tNews\n"
                     u"Moon\thttp://example.org/b\tScience\n"
                     u"Star\thttp://example.org/c\tScience\n"_s;
const QStringList seeded{u"News"_s, u"Science"_s};

/// So many categories, "C00" and on.
QString manyCategories(int count) {
    QString text;
    for (int i = 0; i < count; ++i)
        text += u"Channel %1\thttp://example.org/%1\tC%2\n"_s.arg(i).arg(i, 2, 10, QChar(u'0'));
    return text;
}

using Hand = std::function<void(User &)>;

Hand press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    return [key, modifiers](User &user) { user.press(key, modifiers); };
}
Hand tap(const QString &button) {
    return [button](User &user) { user.tap(button); };
}
Hand choose(const QStringList &path) {
    return [path](User &user) { user.choose(path); };
}

class CategoryListTest : public testing::Test {
protected:
    void run(const Hand &user) {
        Session session(device.root);
        EXPECT_TRUE(session.run(user));
    }

    /// What is stored once the session is over: the categories, and the channels of one of them.
    QStringList channels(const QString &category) {
        device.restart();
        EXPECT_TRUE(device.store->Open());
        return device.channelNames(category);
    }

    TestDevice device{seed};
};

TEST_F(CategoryListTest, EveryWayLeadsToItsScreenAndEveryWayBackLeadsBack) {
    struct Round {
        const char *name;
        Hand go;
        QString caption;
        Hand leave;
    };
    const QString channelList = u"Category List"_s; // the soft key that leaves it
    const Round rounds[]{
        {"Enter", press(Qt::Key_Return), u"Science"_s, tap(channelList)},
        {"number block", press(Qt::Key_Enter), u"Science"_s, press(Qt::Key_Escape)},
        {"tap", [](User &user) { user.tapRow(1); }, u"Science"_s, press(Qt::Key_Back)},
        {"finger", [](User &user) { user.touchRow(1); }, u"Science"_s,
         press(Qt::Key_Left, Qt::AltModifier)},
        {"F1", press(Qt::Key_F1), u"Tidebrook"_s, press(Qt::Key_Escape)},
        {"help key", press(Qt::Key_Help), u"Tidebrook"_s, tap(u"Done"_s)},
        {"About", choose({u"About"_s}), u"About"_s, press(Qt::Key_Escape)},
        {"Setting", choose({u"Setting"_s}), u"Today Setting"_s, tap(u"Cancel"_s)},
    };
    run([&](User &user) {
        for (const Round &round : rounds) {
            SCOPED_TRACE(round.name);
            ASSERT_TRUE(user.seesRows(seeded) && user.seesQuiet() && user.seesSelected(0));
            user.press(Qt::Key_Down);
            round.go(user);
            ASSERT_TRUE(user.seesCaption(round.caption));
            round.leave(user);
            ASSERT_TRUE(user.seesCaption(u"All Categories"_s));
            user.press(Qt::Key_Up);
        }
        for (const Hand &open : {press(Qt::Key_F10), press(Qt::Key_Menu), tap(u"Menu"_s)}) {
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
    run([&](User &user) {
        ASSERT_TRUE(user.seesRows(seeded));
        for (const QString &name : names) {
            user.choose({u"New Category"_s});
            ASSERT_TRUE(user.seesEditor(name));
            user.press(Qt::Key_Return);
            EXPECT_TRUE(user.sees([&user] { return user.list()->rowText(0) != u"News"; }));
        }
        ASSERT_TRUE(user.seesQuiet());
        EXPECT_EQ(user.rows(), QStringList({names[2], names[1], names[0]}) + seeded);
        user.choose({u"New Category"_s});
        ASSERT_TRUE(user.seesEditor(u"New Category (2)"_s));
        user.type(u"Sport"_s);
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesRows(seeded + names + QStringList{u"Sport"_s}));
    });
    EXPECT_EQ(storedCategories(device.root), seeded + names + QStringList{u"Sport"_s});
}

TEST_F(CategoryListTest, ARenamedCategoryHasTheNameThatWasMeantAndKeepsItsChannels) {
    struct Naming {
        const char *what;
        QString typed;
        QString expected;
        bool isWarned = false;
    };
    const QString old = u"Science"_s;
    const QString emoji = u"\U0001F600"_s;
    const Naming namings[]{
        {"another name", u"Maths"_s, u"Maths"_s},
        {"its own name", old, old},
        {"nothing", u""_s, old},
        {"taken", u"News"_s, old, true},
        {"taken, but for blanks", u"  News "_s, old, true},
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
    for (const Naming &naming : namings) {
        const TestDevice own(seed);
        Session session(own.root);
        EXPECT_TRUE(session.run([&](User &user) {
            SCOPED_TRACE(naming.what);
            ASSERT_TRUE(user.seesRows(seeded));
            user.press(Qt::Key_Down);
            user.press(Qt::Key_F2);
            ASSERT_TRUE(user.seesEditor(old));
            if (naming.typed.isEmpty())
                user.press(Qt::Key_Delete);
            else
                user.paste(naming.typed);
            user.press(Qt::Key_Return);
            if (naming.isWarned) {
                ASSERT_TRUE(user.seesBox(u"The name is exist!"_s));
                user.press(Qt::Key_Return);
                ASSERT_TRUE(user.seesNoBox());
            }
            EXPECT_TRUE(user.seesRows({u"News"_s, naming.expected}));
            EXPECT_TRUE(user.seesQuiet());
            user.press(Qt::Key_Down);
            user.press(Qt::Key_Return);
            EXPECT_TRUE(user.seesRows({u"Moon"_s, u"Star"_s}));
        }));
        EXPECT_EQ(storedCategories(own.root), QStringList({u"News"_s, naming.expected}));
    }
}

TEST_F(CategoryListTest, ADeletedCategoryIsGoneWithItsChannelsAndOnlyAfterAYes) {
    run([](User &user) {
        ASSERT_TRUE(user.seesRows(seeded));
        for (const Hand &say : {tap(u"No"_s), press(Qt::Key_Return), press(Qt::Key_Escape)}) {
            user.press(Qt::Key_Delete);
            ASSERT_TRUE(user.seesBox(u"Are you sure you want to delete this category?"_s));
            say(user);
            ASSERT_TRUE(user.seesNoBox());
        }
        EXPECT_TRUE(user.seesQuiet());
        EXPECT_EQ(user.rows(), seeded);

        user.choose({u"Delete"_s});
        ASSERT_TRUE(user.seesBox(u"Are you sure you want to delete this category?"_s));
        user.tap(u"Yes"_s);
        EXPECT_TRUE(user.seesRows({u"Science"_s}));
        EXPECT_TRUE(user.seesSelected(0)) << "the row that came into the place of the deleted one";
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesCaption(u"Science"_s)) << "and no other category";
        EXPECT_TRUE(user.seesRows({u"Moon"_s, u"Star"_s}));
    });
    EXPECT_EQ(storedCategories(device.root), QStringList{u"Science"_s});
    EXPECT_EQ(channels(u"News"_s), QStringList());
    EXPECT_EQ(channels(u"Science"_s), QStringList({u"Moon"_s, u"Star"_s}));
}

TEST_F(CategoryListTest, WithoutASelectionNothingIsDoneButWarned) {
    run([](User &user) {
        ASSERT_TRUE(user.seesRows(seeded));
        user.press(Qt::Key_Down);
        user.press(Qt::Key_Delete);
        ASSERT_TRUE(user.seesBox(u"Are you sure you want to delete this category?"_s));
        user.tap(u"Yes"_s);
        ASSERT_TRUE(user.seesRows({u"News"_s}));
        ASSERT_TRUE(user.seesSelected(-1)) << "there is no row in the place of the last";
        for (const Hand &act : {press(Qt::Key_Return), press(Qt::Key_F2), choose({u"Rename"_s})}) {
            act(user);
            ASSERT_TRUE(user.seesBox(u"No category selected!"_s));
            user.tap(u"OK"_s);
            ASSERT_TRUE(user.seesNoBox());
        }
        user.press(Qt::Key_Delete);
        EXPECT_TRUE(user.seesQuiet() && user.seesNoBox());
        EXPECT_EQ(user.rows(), QStringList{u"News"_s});
        user.tapBelowRows();
        EXPECT_TRUE(user.seesSelected(0));
        EXPECT_TRUE(user.seesCaption(u"All Categories"_s));
    });
}

TEST_F(CategoryListTest, WhatIsDoneQuicklyIsDoneToTheRowThatIsMeant) {
    std::counting_semaphore<> gate(0);
    Session session(device.root);
    EXPECT_TRUE(session.run([&](User &user) {
        ASSERT_TRUE(user.seesRows(seeded));
        // A new one that keeps its name, opened at once.
        user.choose({u"New Category"_s});
        ASSERT_TRUE(user.seesEditor(u"New Category"_s));
        user.press(Qt::Key_Escape);
        user.tapRow(0);
        EXPECT_TRUE(user.seesCaption(u"New Category"_s));
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesRows(seeded + QStringList{u"New Category"_s}));
        ASSERT_TRUE(user.seesQuiet());

        // Renamed, and deleted under its new name; the answer goes to the box, whatever comes
        // behind it meanwhile.
        user.look([&] { session.state().changes.tell([&gate] { gate.acquire(); }); });
        user.press(Qt::Key_F2);
        ASSERT_TRUE(user.seesEditor(u"News"_s));
        user.type(u"Old"_s);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesNoEditor());
        user.press(Qt::Key_Delete);
        ASSERT_TRUE(user.seesBox(u"Are you sure you want to delete this category?"_s));
        gate.release();
        ASSERT_TRUE(user.seesQuiet());
        user.press(Qt::Key_Left);
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesNoBox());
        EXPECT_TRUE(user.seesQuiet());
    }));
    EXPECT_EQ(storedCategories(device.root), QStringList({u"Science"_s, u"New Category"_s}));
    EXPECT_EQ(channels(u"Science"_s), QStringList({u"Moon"_s, u"Star"_s}));
}

TEST_F(CategoryListTest, WhatIsBeingTypedStaysWhenTheListIsRefreshed) {
    run([](User &user) {
        ASSERT_TRUE(user.seesRows(seeded));
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
        EXPECT_TRUE(user.seesRows({u"Sport"_s, u"Maths"_s}));
    });
    EXPECT_EQ(channels(u"Sport"_s), QStringList({u"Moon"_s, u"Star"_s}));
}

TEST_F(CategoryListTest, TheFontSizeIsShownCheckedAndKept) {
    const auto sees = [](User &user, const QString &size, int points) {
        user.choose({u"Font Size"_s});
        return user.sees([size, points, &user] {
            const auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            QStringList checked;
            for (const QAction *entry : menu != nullptr ? menu->actions() : QList<QAction *>()) {
                if (entry->isChecked())
                    checked.append(entry->text());
            }
            return checked == QStringList{size} && user.list()->font().pointSize() == points;
        });
    };
    run([&](User &user) {
        ASSERT_TRUE(user.seesRows(seeded));
        EXPECT_TRUE(sees(user, u"Small"_s, 9));
        user.press(Qt::Key_Escape);
        user.press(Qt::Key_Escape);
        user.choose({u"Font Size"_s, u"Big"_s});
        EXPECT_TRUE(user.seesRows(seeded));
        EXPECT_TRUE(sees(user, u"Big"_s, 13));
    });
    EXPECT_EQ(SettingsStore(*device.registry).dword(programKey, u"FontSize"), 13U);
    run([&](User &user) {
        ASSERT_TRUE(user.seesRows(seeded) && user.seesQuiet());
        EXPECT_TRUE(sees(user, u"Big"_s, 13)) << "after a restart";
        user.press(Qt::Key_Escape);
        user.press(Qt::Key_Escape);
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesRows({u"Planet"_s}));
        EXPECT_TRUE(sees(user, u"Big"_s, 13)) << "and on the next screen";
    });
}

TEST(CategoryListSizeTest, RowsMakeRoomForTheScrollBarWhereThereIsOne) {
    struct Case {
        QSize screen;
        int rows;
        bool hasScrollBar;
    };
    for (const Case &one :
         {Case{{240, 320}, 6, false}, Case{{240, 320}, 7, true}, Case{{320, 240}, 4, false},
          Case{{320, 240}, 5, true}, Case{{300, 300}, 4, false}, Case{{300, 300}, 5, true}}) {
        const TestDevice device(manyCategories(one.rows));
        Session session(device.root, one.screen);
        EXPECT_TRUE(session.run([&](User &user) {
            SCOPED_TRACE(one.rows);
            const auto isRight = [&](int rows, bool hasScrollBar) {
                return user.sees([&user, rows, hasScrollBar] {
                    const ListView *list = user.list();
                    if (list == nullptr)
                        return false; // a box lies over it
                    const int bar =
                        list->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, list);
                    return list->rowCount() == rows &&
                           list->columnWidth() ==
                               user.stack().width() - 2 - (hasScrollBar ? bar : 0) &&
                           list->verticalScrollBar()->isVisible() == hasScrollBar;
                });
            };
            EXPECT_TRUE(isRight(one.rows, one.hasScrollBar));
            user.press(Qt::Key_Delete);
            ASSERT_TRUE(user.seesBox(u"Are you sure you want to delete this category?"_s));
            user.tap(u"Yes"_s);
            EXPECT_TRUE(isRight(one.rows - 1, false));
            user.resize(one.screen.transposed());
            EXPECT_TRUE(isRight(one.rows - 1, one.screen.width() == 240));
        }));
    }
}

TEST(CategoryListScrollTest, AMovingFingerAndTheWheelScrollAndOpenNothing) {
    const TestDevice device(manyCategories(60));
    Session session(device.root);
    EXPECT_TRUE(session.run([](User &user) {
        ASSERT_TRUE(user.sees([&user] { return user.list()->rowCount() == 60; }));
        const auto place = [&user] {
            int value = 0;
            user.look([&] { value = user.list()->verticalScrollBar()->value(); });
            return value;
        };
        const auto seesScrolledPast = [&user](int before) {
            return user.sees(
                [&user, before] { return user.list()->verticalScrollBar()->value() > before; });
        };
        user.turnWheel(1);
        EXPECT_TRUE(seesScrolledPast(0));
        const int wheeled = place();
        user.touchRow(4, -120);
        EXPECT_TRUE(seesScrolledPast(wheeled));
        EXPECT_TRUE(user.seesCaption(u"All Categories"_s));
        user.press(Qt::Key_End);
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesCaption(u"C59"_s));
    }));
}

TEST_F(CategoryListTest, AHeadlineTappedTodayLeadsIntoItsCategory) {
    NamedEvent tapped(device.root, u"CLKTODAY", NamedEvent::Reset::Auto);
    const auto tapHeadline = [&](const QString &category) {
        device.registry->write(testTodayKey, u"CATEGORY", category);
        device.registry->write(testTodayKey, u"CHANNEL", u"Sun"_s);
        device.registry->write(testTodayKey, u"TITLE", u"A title"_s);
        tapped.set();
    };
    tapHeadline(u"Science"_s);
    std::counting_semaphore<> gate(0);
    Session session(device.root);
    EXPECT_TRUE(session.run([&](User &user) {
        EXPECT_TRUE(user.seesCaption(u"Science"_s)) << "tapped before the reader was started";
        EXPECT_TRUE(user.seesRows({u"Moon"_s, u"Star"_s}));
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesRows(seeded) && user.seesQuiet());

        user.leaveAndReturn();
        EXPECT_TRUE(user.seesQuiet());
        EXPECT_TRUE(user.seesCaption(u"All Categories"_s)) << "each tap leads there once";

        tapHeadline(u"Science"_s);
        user.leaveAndReturn();
        EXPECT_TRUE(user.seesCaption(u"Science"_s));
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesRows(seeded) && user.seesQuiet());

        // What is told of a tap late waits for what was opened meanwhile.
        const auto tapAndBeSlow = [&] {
            user.look([&] { session.state().settings.tell([&gate] { gate.acquire(); }); });
            tapHeadline(u"Science"_s);
            user.leaveAndReturn();
        };
        tapAndBeSlow();
        user.press(Qt::Key_Delete);
        ASSERT_TRUE(user.seesBox(u"Are you sure you want to delete this category?"_s));
        gate.release();
        ASSERT_TRUE(user.seesQuiet());
        user.tap(u"No"_s);
        EXPECT_TRUE(user.seesCaption(u"Science"_s));
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesRows(seeded) && user.seesQuiet());

        // It sends no other choice astray, and waits for that too.
        tapAndBeSlow();
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesCaption(u"News"_s));
        gate.release();
        ASSERT_TRUE(user.seesQuiet());
        EXPECT_TRUE(user.seesCaption(u"News"_s));
        user.press(Qt::Key_Escape);
        EXPECT_TRUE(user.seesCaption(u"Science"_s));
        user.press(Qt::Key_Escape);
        EXPECT_TRUE(user.seesRows(seeded) && user.seesQuiet());
    }));
}

} // namespace
} // namespace tidebrook
