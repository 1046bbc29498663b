#include "platform/sqlite_database.h"
#include "support/full_disk.h"
#include "ui/kit/layer.h"
#include "ui/kit/progress_line.h"
#include "ui/reading_test.h"

#include <QFile>

#include <semaphore>

namespace tidebrook {
namespace {

const Hand add = choosing({u"New Category"_s});

/// Types a name for the category that is selected.
Hand naming(const QString &before, const QString &name) {
    return [before, name](User &user) {
        user.press(Qt::Key_F2);
        ASSERT_TRUE(user.seesEditor(before));
        user.type(name);
        ASSERT_TRUE(user.seesEditor(name));
    };
}

void rename(User &user) {
    naming(u"Science"_s, u"Sport"_s)(user);
    user.press(Qt::Key_Return);
    ASSERT_TRUE(user.seesNoEditor());
}

void remove(User &user) {
    user.press(Qt::Key_Delete);
    ASSERT_TRUE(user.seesBox(deleteCategory));
    user.tap(u"Yes"_s);
}

/// A database file that another program is busy writing to, for as long as this lives.
struct WriteLock {
    explicit WriteLock(const QString &path) : database(SqliteDatabase::open(path, {})) {}

    std::unique_ptr<SqliteDatabase> database;
    SqliteTransaction transaction{*database};
};

class BadGround : public ReadingTest {
protected:
    /// The user does something to Science.
    void runOnScience(const Hand &user) {
        run([&](User &someone) {
            someone.press(Qt::Key_Down);
            ASSERT_TRUE(someone.seesSelected(1));
            user(someone);
        });
    }
    const QString registry = device.root.registryPath();
    const QString database = device.root.filePath(u"\\RSSVault.sdf");
};

TEST_F(BadGround, AFileThatOthersAreBusyWithIsWaitedFor) {
    runOnScience([&](User &user) {
        QString name = u"Science"_s;
        for (const QString &file : {registry, database}) {
            auto lock = std::make_unique<WriteLock>(file);
            naming(name, name + u'+')(user);
            user.press(Qt::Key_Return);
            name += u'+';
            EXPECT_TRUE(user.sees([&] { return user.list()->findRow(name) >= 0; }));
            EXPECT_TRUE(user.sees([&] { return user.stack().progressLine().isAtWork(); }));
            user.press(Qt::Key_Up);
            EXPECT_TRUE(user.seesSelected(file == registry ? 0 : 1)) << "the list is alive";
            lock.reset();
            EXPECT_TRUE(user.seesRows({u"News"_s, u"Travel"_s, name}));
            EXPECT_TRUE(user.seesQuiet() && user.seesNoBox());
            user.press(Qt::Key_End);
        }
    });
    EXPECT_EQ(storedCategories(device.root).last(), u"Science++");
    EXPECT_EQ(device.channelNames(u"Science++"_s).size(), 3);
}

TEST_F(BadGround, WhatCannotBeStoredIsToldOnceAndNothingIsLost) {
    // The locked file, or none where the disk is full.
    const std::pair<QString, QList<Hand>> grounds[]{
        {registry, {add, rename, remove}},
        {database, {rename, remove}},
        {{}, {add, rename, remove}},
    };
    runOnScience([&](User &user) {
        for (const auto &[file, hands] : grounds) {
            for (const Hand &hand : hands) {
                SCOPED_TRACE(file.toStdString());
                {
                    const auto full = file.isNull() ? std::make_unique<FullDisk>() : nullptr;
                    const auto lock = full ? nullptr : std::make_unique<WriteLock>(file);
                    hand(user);
                    expectBox(user, file == database ? databaseProblem : fileProblem);
                }
                QStringList rows = user.rows();
                user.act([&user] { user.list()->selectRow(user.list()->findRow(u"Science"_s)); });
                rows.sort();
                EXPECT_EQ(rows, seeded);
            }
        }
    });
    device.restart();
    EXPECT_TRUE(device.store->Open());
    QStringList categories = storedCategories(device.root);
    categories.sort();
    EXPECT_EQ(categories, seeded);
    EXPECT_EQ(device.channelNames(u"Science"_s), QStringList({u"Moon"_s, u"Odd"_s, u"Star"_s}));
    EXPECT_EQ(device.counts(u"Science"_s, u"Moon"_s), u"3/5");
}

TEST_F(BadGround, ADamagedRegistryIsToldAndLeftAsItIs) {
    device.store.reset();
    device.registry.reset();
    const QByteArray garbage(8192, 'x');
    ASSERT_TRUE(writeFile(registry, garbage));
    session = std::make_unique<Session>(device.root);
    EXPECT_TRUE(session->run([&](User &user) {
        expectBox(user, fileProblem);
        add(user);
        expectBox(user, fileProblem);
        EXPECT_EQ(user.rows(), QStringList()) << "no row is shown that is not stored";
    }));
    QFile file(registry);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), garbage);
}

struct Closing {
    const char *what;
    Hand act;
    QStringList stored;
};
const QStringList renamed{u"News"_s, u"Travel"_s, u"Sport"_s};
const Closing closings[]{
    {"a name is being typed", naming(u"Science"_s, u"Sport"_s), renamed},
    {"a taken name is being typed", naming(u"Science"_s, u"News"_s), seeded},
    {"a new category is being named",
     [](User &user) {
         add(user);
         ASSERT_TRUE(user.seesEditor(u"New Category"_s));
         user.type(u"Sport"_s);
     },
     seeded + QStringList{u"Sport"_s}},
    {"a renaming is under way", rename, renamed},
    {"a question is asked",
     [](User &user) {
         user.press(Qt::Key_Delete);
         ASSERT_TRUE(user.seesBox(deleteCategory));
     },
     seeded},
    {"the menu is open", choosing({u"Font Size"_s}), seeded},
    {"the help lies over the channels",
     [](User &user) {
         user.press(Qt::Key_Return);
         ASSERT_TRUE(user.seesCaption(u"Science"_s));
         user.press(Qt::Key_F1);
         ASSERT_TRUE(user.seesCaption(u"Tidebrook"_s));
     },
     seeded},
};

class EachClosing : public BadGround, public testing::WithParamInterface<Closing> {};

TEST_P(EachClosing, LosesNothing) {
    SCOPED_TRACE(GetParam().what);
    std::counting_semaphore<> gate(0);
    runOnScience([&](User &user) {
        // Whatever is to be stored has not even begun when the screens end.
        user.look([&] { session->state().changes.tell([&] { gate.acquire(); }); });
        GetParam().act(user);
        user.closeWindow();
        EXPECT_TRUE(user.sees([&user] { return user.stack().top() == nullptr; }));
        gate.release();
    });
    EXPECT_EQ(storedCategories(device.root), GetParam().stored);
}

INSTANTIATE_TEST_SUITE_P(ClosedWindow, EachClosing, testing::ValuesIn(closings));

TEST_F(BadGround, AWindowOfAnySizeCanBeWorkedIn) {
    for (const QSize &size : {QSize(100, 100), QSize(4000, 3000), QSize(300, 300)}) {
        SCOPED_TRACE(size.width());
        const auto work = [&](User &user) {
            const auto isInSight = [&user] {
                const QRect row = user.list()->visualRect(user.list()->currentIndex());
                return row.isValid() && user.list()->viewport()->rect().intersects(row);
            };
            user.press(Qt::Key_End);
            EXPECT_TRUE(user.seesSelected(2) && user.sees(isInSight));
            // Turned and turned again while the channels come.
            user.press(Qt::Key_Up);
            user.press(Qt::Key_Return);
            const QSize turned = size + QSize(0, 50);
            for (const QSize &next : {turned, size, turned})
                user.resize(next);
            EXPECT_TRUE(user.seesLines(scienceLines));
            EXPECT_TRUE(user.sees([&] {
                return user.stack().top()->size() == turned && isInSight() &&
                       user.list()->columnWidth() == size.width() - 2;
            }));
        };
        run(work, size);
    }
}

} // namespace
} // namespace tidebrook
