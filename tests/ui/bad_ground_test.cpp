#include "platform/sqlite_database.h"
#include "support/full_disk.h"
#include "support/test_device.h"
#include "ui/kit/layer.h"
#include "ui/kit/list_view.h"
#include "ui/kit/progress_line.h"
#include "ui/session.h"

#include <QFile>

#include <gtest/gtest.h>

#include <semaphore>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

const QString seed = u"Planet\thttp://example.org/a\tNews\n"
                     u"Moon\thttp://example.org/b\tScience\n"
                     u"Star\thttp://example.org/c\tScience\n"_s;
const QStringList seeded{u"News"_s, u"Science"_s};
const QString fileProblem = u"Encountering Problem when Accessing Crucial File"_s;
const QString databaseProblem = u"Encountering Problem when Accessing Database"_s;

constexpr auto unnoticed = 50ms;

/// Holds a database file as another program does that is busy writing to it.
class WriteLock {
public:
    explicit WriteLock(const QString &path)
        : database_(SqliteDatabase::open(path, {})), transaction_(*database_) {
        EXPECT_TRUE(transaction_.isOpen());
    }

private:
    std::unique_ptr<SqliteDatabase> database_;
    SqliteTransaction transaction_;
};

using Hand = std::function<void(User &)>;

void add(User &user) { user.choose({u"New Category"_s}); }

void rename(User &user) {
    user.press(Qt::Key_F2);
    ASSERT_TRUE(user.seesEditor(u"News"_s));
    user.type(u"Sport"_s);
    user.press(Qt::Key_Return);
    ASSERT_TRUE(user.seesNoEditor());
}

void remove(User &user) {
    user.press(Qt::Key_Delete);
    ASSERT_TRUE(user.seesBox(u"Are you sure you want to delete this category?"_s));
    user.tap(u"Yes"_s);
}

class BadGround : public testing::Test {
protected:
    /// The categories in any order, with their channels.
    void expectNothingLost() {
        device.restart();
        EXPECT_TRUE(device.store->Open());
        QStringList categories = storedCategories(device.root);
        categories.sort();
        EXPECT_EQ(categories, seeded);
        EXPECT_EQ(device.channelNames(u"News"_s), QStringList{u"Planet"_s});
        EXPECT_EQ(device.channelNames(u"Science"_s), QStringList({u"Moon"_s, u"Star"_s}));
    }

    /// What the user does fails, and is told once: with nothing lost, and without being kept
    /// waiting before the screen.
    void expectTold(const QString &lockedFile, const Hand &act) {
        Session session(device.root);
        EXPECT_TRUE(session.run([&](User &user) {
            ASSERT_TRUE(user.seesRows(seeded));
            const WriteLock lock(lockedFile);
            act(user);
            ASSERT_TRUE(user.seesBox(lockedFile == database ? databaseProblem : fileProblem));
            user.press(Qt::Key_Return);
            EXPECT_TRUE(user.seesNoBox() && user.seesQuiet() && user.seesNoBox());
            QStringList rows = user.rows();
            rows.sort();
            EXPECT_EQ(rows, seeded);
        }));
        EXPECT_LT(session.longestBlocked(), unnoticed);
        expectNothingLost();
    }

    TestDevice device{seed};
    const QString registry = device.root.registryPath();
    const QString database = device.root.filePath(u"\\RSSVault.sdf");
};

TEST_F(BadGround, AFileThatOthersAreBusyWithIsWaitedFor) {
    for (const QString &file : {registry, database}) {
        const TestDevice own(seed);
        Session session(own.root);
        EXPECT_TRUE(session.run([&](User &user) {
            ASSERT_TRUE(user.seesRows(seeded));
            auto lock = std::make_unique<WriteLock>(
                file == registry ? own.root.registryPath() : own.root.filePath(u"\\RSSVault.sdf"));
            rename(user);
            EXPECT_TRUE(user.sees([&user] { return user.list()->rowText(0) == u"Sport"; }));
            EXPECT_TRUE(user.sees([&user] { return user.stack().progressLine().isAtWork(); }));
            user.press(Qt::Key_Down);
            EXPECT_TRUE(user.seesSelected(1)) << "the list is alive meanwhile";
            lock.reset();
            EXPECT_TRUE(user.seesRows({u"Science"_s, u"Sport"_s}));
            EXPECT_TRUE(user.seesQuiet() && user.seesNoBox());
        }));
        EXPECT_LT(session.longestBlocked(), unnoticed);
        EXPECT_EQ(storedCategories(own.root), QStringList({u"Science"_s, u"Sport"_s}));
    }
}

TEST_F(BadGround, ARegistryThatStaysLockedIsToldOfAnAddition) { expectTold(registry, add); }
TEST_F(BadGround, ARegistryThatStaysLockedIsToldOfARenaming) { expectTold(registry, rename); }
TEST_F(BadGround, ARegistryThatStaysLockedIsToldOfADeletion) { expectTold(registry, remove); }
TEST_F(BadGround, ADatabaseThatStaysLockedIsToldOfARenaming) { expectTold(database, rename); }
TEST_F(BadGround, ADatabaseThatStaysLockedIsToldOfADeletion) { expectTold(database, remove); }

TEST_F(BadGround, AFullDiskIsToldAndLosesNothing) {
    for (const Hand &act : {Hand(add), Hand(rename), Hand(remove)}) {
        Session session(device.root);
        EXPECT_TRUE(session.run([&](User &user) {
            ASSERT_TRUE(user.seesRows(seeded));
            const FullDisk full;
            act(user);
            ASSERT_TRUE(user.seesBox(fileProblem));
            user.press(Qt::Key_Return);
            EXPECT_TRUE(user.seesNoBox() && user.seesRows(seeded));
        }));
        expectNothingLost();
    }
}

TEST_F(BadGround, ADamagedRegistryIsToldAndLeftAsItIs) {
    device.registry.reset();
    const QByteArray garbage(8192, 'x');
    ASSERT_TRUE(writeFile(registry, garbage));
    Session session(device.root);
    EXPECT_TRUE(session.run([&](User &user) {
        ASSERT_TRUE(user.seesBox(fileProblem));
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesNoBox());
        user.choose({u"New Category"_s});
        ASSERT_TRUE(user.seesBox(fileProblem));
        user.press(Qt::Key_Return);
        EXPECT_TRUE(user.seesNoBox() && user.seesQuiet() && user.seesNoBox());
        EXPECT_EQ(user.rows(), QStringList()) << "no row is shown that is not stored";
    }));
    QFile file(registry);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), garbage);
}

TEST(ClosedWindow, LosesNothingWhateverWasOpen) {
    struct Case {
        const char *what;
        Hand act;
        QStringList stored;
    };
    const auto editNews = [](const QString &name) {
        return [name](User &user) {
            user.press(Qt::Key_F2);
            ASSERT_TRUE(user.seesEditor(u"News"_s));
            user.type(name);
            ASSERT_TRUE(user.seesEditor(name));
        };
    };
    const QStringList renamed{u"Science"_s, u"Sport"_s};
    const Case cases[]{
        {"a name is being typed", editNews(u"Sport"_s), renamed},
        {"a taken name is being typed", editNews(u"Science"_s), seeded},
        {"a new category is being named",
         [](User &user) {
             user.choose({u"New Category"_s});
             ASSERT_TRUE(user.seesEditor(u"New Category"_s));
             user.type(u"Sport"_s);
         },
         seeded + QStringList{u"Sport"_s}},
        {"a renaming is under way", rename, renamed},
        {"a question is asked",
         [](User &user) {
             user.press(Qt::Key_Delete);
             ASSERT_TRUE(user.seesBox(u"Are you sure you want to delete this category?"_s));
         },
         seeded},
        {"the menu is open",
         [](User &user) {
             user.choose({u"Font Size"_s});
             ASSERT_TRUE(user.seesPopup());
         },
         seeded},
        {"the settings are open",
         [](User &user) {
             user.choose({u"Setting"_s});
             ASSERT_TRUE(user.seesCaption(u"Today Setting"_s));
         },
         seeded},
        {"the help lies over the channels",
         [](User &user) {
             user.press(Qt::Key_Return);
             ASSERT_TRUE(user.seesCaption(u"News"_s));
             user.press(Qt::Key_F1);
             ASSERT_TRUE(user.seesCaption(u"Tidebrook"_s));
         },
         seeded},
    };
    for (const Case &one : cases) {
        const TestDevice device(seed);
        std::counting_semaphore<> gate(0);
        Session session(device.root);
        EXPECT_TRUE(session.run([&](User &user) {
            SCOPED_TRACE(one.what);
            ASSERT_TRUE(user.seesRows(seeded));
            // Whatever is to be stored has not even begun when the screens end.
            user.look([&] { session.state().changes.tell([&] { gate.try_acquire_for(100ms); }); });
            one.act(user);
            user.closeWindow();
            EXPECT_TRUE(user.sees([&user] { return user.stack().top() == nullptr; }));
        }));
        EXPECT_EQ(storedCategories(device.root), one.stored) << one.what;
    }
}

TEST(WindowSize, EveryOneOfThemCanBeWorkedIn) {
    for (const QSize &size : {QSize(100, 100), QSize(4000, 3000), QSize(300, 300)}) {
        const TestDevice device(seed);
        Session session(device.root, size);
        EXPECT_TRUE(session.run([&](User &user) {
            SCOPED_TRACE(size.width());
            ASSERT_TRUE(user.seesRows(seeded));
            rename(user);
            EXPECT_TRUE(user.seesRows({u"Science"_s, u"Sport"_s}));
            ASSERT_TRUE(user.seesQuiet());
            const auto isInSight = [&user] {
                ListView *list = user.list();
                return list->visualRect(list->currentIndex()).isValid() &&
                       list->viewport()->rect().intersects(list->visualRect(list->currentIndex()));
            };
            EXPECT_TRUE(user.sees(isInSight));
            // Turned and turned again while the channels come.
            user.press(Qt::Key_Return);
            const QSize turned = size + QSize(0, 50);
            for (const QSize &next : {turned, size, turned})
                user.resize(next);
            EXPECT_TRUE(user.seesRows({u"Moon"_s, u"Star"_s}));
            EXPECT_TRUE(user.sees([&] {
                return user.stack().top()->size() == turned && isInSight() &&
                       user.list()->columnWidth() == size.width() - 2;
            }));
            user.press(Qt::Key_Escape);
            ASSERT_TRUE(user.seesCaption(u"All Categories"_s) && user.seesQuiet());
            remove(user);
            EXPECT_TRUE(user.seesRows({u"Sport"_s}));
        }));
    }
}

} // namespace
} // namespace tidebrook
