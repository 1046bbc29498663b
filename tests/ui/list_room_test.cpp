#include "kit/layer.h"
#include "kit/touch_scrolling.h"
#include "res/strings.h"
#include "ui/reading_test.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QScrollBar>
#include <QStyle>
#include <QStyleHints>

namespace {

QRect inputPanel; // on the screen; empty while it is down

} // namespace

// No desktop is here that has an input panel: these stand for the ones that Qt asks it through.
bool QInputMethod::isVisible() const { return !inputPanel.isEmpty(); }
QRectF QInputMethod::keyboardRectangle() const { return inputPanel; }

namespace tidebrook {
namespace {

class ListRoomTest : public ReadingTest {
protected:
    void addCategories(const QString &name, int first, int end) {
        for (int i = first; i < end; ++i)
            CategoryListStore(*device.registry).AddCategory(name.arg(i));
    }
};

TEST_F(ListRoomTest, RowsMakeRoomForTheScrollBarWhereThereIsOne) {
    for (const auto &[screen, most] : {std::pair(QSize(320, 240), 4), std::pair(QSize(240, 320), 6),
                                       std::pair(QSize(600, 500), 8)}) {
        SCOPED_TRACE(screen.width());
        addCategories(u"W%1 "_s.arg(screen.width()) + u"%1",
                      static_cast<int>(storedCategories(device.root).size()), most + 1);
        const auto use = [rows = most](User &user) {
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
            removeCategory(user);
            EXPECT_TRUE(isRight(rows, false));
            user.resize({user.stack().height(), user.stack().width()});
            EXPECT_TRUE(isRight(rows, rows == 6));
        };
        run(use, screen);
    }
}

TEST_F(ListRoomTest, WithoutARowTheListSaysWhatToDo) {
    run([](User &user) {
        const auto says = [&user](int id) {
            return user.seesQuiet() && user.seesPart<ListView>([id](const ListView &list) {
                return list.accessibleDescription() == (id != 0 ? resourceString(id) : QString());
            });
        };
        EXPECT_TRUE(says(0));
        user.tapRow(1);
        ASSERT_TRUE(user.seesLines(scienceLines));
        user.tapRow(2);
        ASSERT_TRUE(user.seesCaption(u"Star"_s));
        EXPECT_TRUE(says(noArticleYetString));
        user.choose({u"Show Unread Only"_s});
        EXPECT_TRUE(says(nothingUnreadString));
        const auto isNoted = [](const HeaderBar &header) {
            return header.accessibleName() == u"Star, unread only";
        };
        EXPECT_TRUE(user.seesPart<HeaderBar>(isNoted));
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesLines(scienceLines));
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesRows(seeded) && user.seesQuiet());
        for (int rows = 3; rows > 0; --rows) {
            removeCategory(user);
            ASSERT_TRUE(user.sees([&] { return user.list()->rowCount() == rows - 1; }));
        }
        EXPECT_TRUE(says(noCategoryYetString));
    });
}

TEST_F(ListRoomTest, ScrollsAndKeepsWhatIsSelectedInSight) {
    addCategories(u"C%1"_s, 0, 60);
    run([](User &user) {
        const auto isSelectedInSight = [&user] {
            const ListView *list = user.list();
            return !isScrollingByTouch(*list) &&
                   list->viewport()->rect().contains(list->visualRect(list->currentIndex()));
        };
        int before = 0;
        const auto seesScrolled = [&] {
            const auto place = [&user] { return user.list()->verticalScrollBar()->value(); };
            const bool isScrolled = user.sees([&] { return place() > before; });
            user.look([&] { before = place(); });
            return isScrolled;
        };
        user.turnWheel(1);
        EXPECT_TRUE(seesScrolled());
        user.press(Qt::Key_Delete);
        EXPECT_TRUE(user.seesBox(deleteCategory, u"News"_s) && user.sees(isSelectedInSight));
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesNoBox());
        before = 0;
        user.touchRow(4, -120);
        EXPECT_TRUE(seesScrolled() && user.seesCaption(u"All Categories"_s));
        EXPECT_TRUE(user.seesSelected(0)) << "which the finger has moved out of sight";
        for (const int key : {Qt::Key_Home, Qt::Key_Up}) { // to where the selection is already
            user.look([&] { user.list()->scrollToBottom(); });
            user.press(key);
            EXPECT_TRUE(user.sees(isSelectedInSight));
        }

        // The input panel comes over the last row in sight, and goes.
        const auto bottom = [&user] {
            return user.list()->mapTo(&user.stack(), user.list()->rect().bottomLeft()).y();
        };
        int lowest = 0;
        user.look([&] {
            lowest = bottom();
            const QPoint corner = user.list()->viewport()->rect().bottomLeft();
            user.list()->selectRow(user.list()->indexAt(corner).row() - 1);
            EXPECT_TRUE(isSelectedInSight());
        });
        const auto set = [&user](const QRect &place) {
            user.act([place] {
                inputPanel = place;
                Q_EMIT QGuiApplication::inputMethod()->visibleChanged();
            });
        };
        set({0, 180, 240, 140});
        EXPECT_TRUE(user.sees([&] { return bottom() == 179 && isSelectedInSight(); }));
        set({});
        EXPECT_TRUE(user.sees([&] { return bottom() == lowest; }));

        user.look([&] { user.list()->scrollToBottom(); });
        user.resize({320, 240});
        EXPECT_TRUE(user.sees([&] { return user.stack().top()->width() == 320; }));
        user.look([&] { EXPECT_FALSE(isSelectedInSight()) << "as the reader has scrolled"; });
        user.press(Qt::Key_End);
        for (const QSize &turned :
             {QSize(320, 240), QSize(100, 100), QSize(4000, 3000), QSize(240, 320)}) {
            user.resize(turned);
            EXPECT_TRUE(user.sees(
                [&] { return user.stack().top()->size() == turned && isSelectedInSight(); }));
        }
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesCaption(u"C59"_s));
    });
}

TEST_F(ListRoomTest, BehindATapTheNextListIsTappedAtTheSamePlaceAndScrolledByTheFinger) {
    QStyleHints &hints = *QGuiApplication::styleHints();
    const int usual = hints.mouseDoubleClickInterval();
    for (const bool isDoubleTap : {true, false}) {
        SCOPED_TRACE(isDoubleTap);
        hints.setMouseDoubleClickInterval(isDoubleTap ? 3'600'000 : 1); // ms
        const auto use = [isDoubleTap](User &user) {
            user.touchRow(1);
            ASSERT_TRUE(user.seesLines(scienceLines) && user.seesQuiet());
            user.touchRow(1);
            ASSERT_TRUE(user.seesQuiet());
            EXPECT_TRUE(user.seesCaption(isDoubleTap ? u"Science"_s : u"Odd"_s));
            if (!isDoubleTap)
                return;
            user.touchRow(0);
            ASSERT_TRUE(user.sees([&] { return user.list()->rowCount() == 5; }) &&
                        user.seesQuiet());
            user.touchRow(2, -60);
            EXPECT_TRUE(user.sees([&] { return user.list()->verticalScrollBar()->value() > 0; }));
        };
        run(use, {320, 240});
    }
    hints.setMouseDoubleClickInterval(usual);
}

} // namespace
} // namespace tidebrook
