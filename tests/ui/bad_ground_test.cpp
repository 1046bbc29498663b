#include "kit/layer.h"
#include "kit/progress_line.h"
#include "platform/sql/sqlite_database.h"
#include "support/full_disk.h"
#include "ui/reading_test.h"

namespace tidebrook {
namespace {

const Hand add = choosing({u"New Category"_s});

Hand naming(const QString &name) {
    return [name](User &user) { typeName(user, u"Science"_s, name); };
}
void rename(User &user) { renameCategory(user, u"Science"_s, u"Sport"_s); }

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
            renameCategory(user, name, name + u'+');
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
    // The locked file, for which each waits its time, or none where the disk is full.
    const std::tuple<QString, QList<Hand>, QString> grounds[]{
        {registry, {removeCategory}, fileProblem},
        {database, {rename, removeCategory}, databaseProblem},
        {{}, {add, rename}, fileProblem},
        {{}, {removeCategory}, databaseProblem},
    };
    runOnScience([&](User &user) {
        for (const auto &[file, hands, problem] : grounds) {
            for (const Hand &hand : hands) {
                SCOPED_TRACE(file.toStdString());
                {
                    const auto full = file.isNull() ? std::make_unique<FullDisk>() : nullptr;
                    const auto lock = full ? nullptr : std::make_unique<WriteLock>(file);
                    hand(user);
                    expectBox(user, problem);
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

struct Closing {
    const char *what;
    Hand act;
    QStringList stored;
};
const QStringList renamed{u"News"_s, u"Travel"_s, u"Sport"_s};
const Closing closings[]{
    {"a name is being typed", naming(u"Sport"_s), renamed},
    {"a taken name is being typed", naming(u"News"_s), seeded},
    {"a new category is being named",
     [](User &user) {
         add(user);
         ASSERT_TRUE(user.seesEditor(u"New Category"_s));
         user.type(u"Sport"_s);
     },
     seeded + QStringList{u"Sport"_s}},
    {"a renaming is under way", rename, renamed},
    {"a question is asked", askToDelete, seeded},
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
    runOnScience([&](User &user) {
        // Whatever is to be stored has not even begun when the screens end.
        closeGate(user, &AppState::changes);
        GetParam().act(user);
        user.closeWindow();
        EXPECT_TRUE(user.sees([&user] { return user.stack().top() == nullptr; }));
        gate.release();
    });
    EXPECT_EQ(storedCategories(device.root), GetParam().stored);
}

INSTANTIATE_TEST_SUITE_P(ClosedWindow, EachClosing, testing::ValuesIn(closings));

} // namespace
} // namespace tidebrook
