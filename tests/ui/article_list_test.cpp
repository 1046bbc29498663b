#include "kit/progress_line.h"
#include "platform/sql/sqlite_database.h"
#include "support/full_disk.h"
#include "ui/reading_test.h"

#include <QPixmap>

namespace tidebrook {
namespace {

using ArticleListTest = ReadingTest;

TEST_F(ArticleListTest, IsOrderedAsChosenAndKeepsTheOrder) {
    device.addChannel(u"News"_s, u"Mixed"_s,
                      QList<TestArticle>{{.title = u"b"_s, .date = u"2026-01-02"_s},
                                         {.title = u"d"_s, .date = u"2026-01-04"_s},
                                         {.title = u"a"_s, .date = u"2026-01-01"_s},
                                         {.title = u"c"_s, .date = u"2026-01-03"_s}});
    device.store->MarkArticleRead(u"Mixed"_s, u"c"_s);
    const QStringList mixed{u"*d: 2026-01-04"_s, u"c: 2026-01-03"_s, u"*b: 2026-01-02"_s,
                            u"*a: 2026-01-01"_s};
    const QStringList mixedUnread{mixed[0], mixed[2], mixed[3]};
    const QStringList mixedByStatus = mixedUnread + QStringList{mixed[1]};
    const QStringList unreadOnly{u"Show Unread Only"_s};
    const QStringList status{u"Sort by"_s, u"Status"_s};
    const struct {
        RegistryValue before;
        quint32 after;
        QStringList chosen;
        QStringList lines;
    } rounds[]{{7U, 0, {}, mixed},     // no order has this number
               {u"1"_s, 0, {}, mixed}, // nor is one of another type
               {0U, 2, unreadOnly, mixedUnread},
               {2U, 1, unreadOnly, mixedByStatus},
               {1U, 0, {u"Sort by"_s, u"Date"_s}, mixed},
               {u"2"_s, 1, status, mixedByStatus}};
    for (const auto &round : rounds) {
        device.registry->write(programKey, u"SortMode", round.before);
        run([&](User &user) {
            go(user, 2, 0);
            if (!round.chosen.isEmpty())
                user.choose(round.chosen);
            EXPECT_TRUE(user.seesLines(round.lines) && user.seesQuiet() && user.seesSelected(0));
            const QStringList entries = user.entries(u"Sort by"_s) + user.entries();
            const QStringList checks{u"+Date"_s, u"+Status"_s, u"+Show Unread Only"_s};
            for (quint32 order = 0; order < 3; ++order)
                EXPECT_EQ(entries.contains(checks[order]), order == round.after) << order;
        });
        EXPECT_EQ(device.registry->read(programKey, u"SortMode"), RegistryValue(round.after));
    }
}

TEST_F(ArticleListTest, ABusyDatabaseIsWaitedForOrTold) {
    const auto other = SqliteDatabase::open(device.root.filePath(u"\\RSSVault.sdf"), {});
    const Hand markRead = choosing({u"Mark all as Read"_s});
    run([&](User &user) {
        const auto seesUnread = [&user](int count) {
            return user.seesQuiet() && user.lines().filter(u"*"_s).size() == count;
        };
        const auto doWhileBusy = [&](const Hand &hand) {
            const SqliteTransaction writing(*other);
            ASSERT_TRUE(writing.isOpen());
            hand(user);
            EXPECT_TRUE(user.sees([&] { return user.stack().progressLine().isAtWork(); }));
        };
        go(user, 2);
        doWhileBusy(markRead);
        EXPECT_TRUE(seesUnread(0));
        EXPECT_EQ(setting(u"UnreadItems", testTodayKey), 4U);
        user.choose({u"Mark all as Unread"_s});
        EXPECT_TRUE(seesUnread(5));
        EXPECT_EQ(setting(u"UnreadItems", testTodayKey), 9U);
        doWhileBusy(pressing(Qt::Key_Return));
        ASSERT_TRUE(user.seesPage(u"2026-01-28"_s));
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesCaption(u"Moon"_s));
        EXPECT_TRUE(seesUnread(4));
        {
            const SqliteTransaction writing(*other);
            ASSERT_TRUE(writing.isOpen());
            markRead(user);
            user.press(Qt::Key_Escape);
            expectBox(user, databaseProblem);
        }
        user.press(Qt::Key_Return);
        EXPECT_TRUE(seesUnread(4));
        const FullDisk disk;
        user.choose({u"Sort by"_s, u"Status"_s});
        user.press(Qt::Key_Escape);
        expectBox(user, fileProblem);
    });
    EXPECT_EQ(device.counts(u"Science"_s, u"Moon"_s), u"4/5");
}

TEST_F(ArticleListTest, KeepsItsPlaceWhenAnArticleWasRead) {
    run([&](User &user) {
        const auto read = [&user](const QString &channel, int row, int day) {
            user.tapRow(row);
            ASSERT_TRUE(user.seesPage(u"2026-01-%1"_s.arg(day)) && user.seesQuiet());
            user.tap(u"Article List"_s);
            ASSERT_TRUE(user.seesCaption(channel) && user.seesQuiet());
        };
        go(user, 2);
        user.choose({u"Sort by"_s, u"Status"_s});
        ASSERT_TRUE(user.seesRows({u"b"_s, u"d"_s, u"e"_s, u"a"_s, u"c"_s}));
        read(u"Moon"_s, 0, 27);
        EXPECT_TRUE(user.seesRows({u"d"_s, u"e"_s, u"a"_s, u"b"_s, u"c"_s}));
        EXPECT_TRUE(user.seesSelected(0)) << "the next that is unread";
        user.choose({u"Show Unread Only"_s});
        ASSERT_TRUE(user.seesRows({u"d"_s, u"e"_s}));
        read(u"Moon"_s, 0, 25);
        EXPECT_TRUE(user.seesRows({u"e"_s}) && user.seesSelected(0));
        read(u"Moon"_s, 0, 24);
        EXPECT_TRUE(user.seesRows({}));
        user.press(Qt::Key_Return);
        expectBox(user, u"No article selected!"_s);
        for (const int key : {Qt::Key_Right, Qt::Key_Left, Qt::Key_Left, Qt::Key_Left})
            user.press(key); // round the channels
        ASSERT_TRUE(user.seesCaption(u"Odd"_s));
        user.choose({u"Sort by"_s, u"Date"_s});
        ASSERT_TRUE(user.sees([&] { return user.list()->rowCount() == 4; }) && user.seesQuiet());
        for (const int row : {1, 2, 3}) {
            read(u"Odd"_s, row, 28 - row);
            EXPECT_TRUE(user.seesSelected(row));
        }
        EXPECT_TRUE(user.lines().filter(u"*"_s).join(u'|').endsWith(u"m1: 2026-01-28"));
    });
}

TEST_F(ArticleListTest, ItsOrderIsNotForgottenByAHastyUser) {
    SettingsStore(*device.registry).setDword(programKey, u"SortMode", 2);
    run([&](User &user) {
        go(user, 1);
        closeGate(user, &AppState::settings);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesCaption(u"Moon"_s));
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesCaption(u"Science"_s));
        gate.release();
        ASSERT_TRUE(user.seesQuiet());
        EXPECT_EQ(setting(u"SortMode"), 2U);
    });
}

/// How much ink a part of a row has.
int ink(User &user, int row, const QMargins &beside) {
    int all = 0;
    user.look([&] {
        const QRect place = user.list()->visualRect(user.list()->model()->index(row, 0));
        const QImage image = user.list()->viewport()->grab(place - beside).toImage();
        for (int i = 0; i < image.width() * image.height(); ++i)
            all += 255 - image.pixelColor(i % image.width(), i / image.width()).lightness();
    });
    return all;
}

TEST_F(ArticleListTest, RowsShowWhatIsUnreadAndSelected) {
    const QMargins title(45, 0, 110, 1); // between the icon and the date
    const QMargins counts(200, 20, 0, 1);
    const QMargins corner(238, 0, 0, 1);
    run([&](User &user) {
        go(user, 1);
        const int focused = ink(user, 0, corner);
        user.press(Qt::Key_F4);
        ASSERT_TRUE(user.seesChoices());
        const int unfocused = ink(user, 0, corner);
        const int unselected = ink(user, 1, corner);
        EXPECT_TRUE(focused != unfocused && focused != unselected && unfocused != unselected);
        user.press(Qt::Key_Escape);
        user.look([&] { user.list()->setRowDetail(2, u"0/1"_s); });
        const int allRead = ink(user, 2, counts);
        user.look([&] { user.list()->setRowDetail(2, u"1/0"_s); });
        EXPECT_GT(ink(user, 2, counts), allRead * 11 / 10) << "bold";
        user.press(Qt::Key_Down);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesCaption(u"Odd"_s) && user.seesQuiet());
        const int unread = ink(user, 1, title);
        user.choose({u"Mark all as Read"_s});
        ASSERT_TRUE(user.seesQuiet());
        EXPECT_GT(unread, ink(user, 1, title) * 11 / 10) << "bold";
    });
}

} // namespace
} // namespace tidebrook
