#include "app/running_reader.h"
#include "ctl/ctl_process.h"
#include "feed_server/generated_feed.h"
#include "platform/sql/sqlite_database.h"
#include "platform/sync/file_lock.h"
#include "ui/reading_test.h"

#include <QDir>
#include <QFile>

#include <optional>

namespace tidebrook {
namespace {

using BrokenDeviceTest = CtlTest;

TEST_F(BrokenDeviceTest, IsReportedByEveryProgramAndNeverTakenForAnEmptyOne) {
    const QString database = filePath(u"RSSVault.sdf"_s);
    const QString registry = filePath(u"registry.db"_s);
    const auto damage = [](const QString &path, qint64 begin) {
        const QByteArray content = contentOf(path);
        const qint64 kept = begin < 0 ? content.size() + begin : begin;
        EXPECT_TRUE(writeFile(path, content.first(kept).leftJustified(content.size(), '\xFF')));
    };
    std::optional<FileLock> rival;
    struct Ground {
        const char *what;
        std::function<void()> spoil;
        QString commandWords; // in the error of commands; null: they are not run
        QString checkWords;   // in what the check prints
        QString problem;      // in the reader's box; null: it shows the categories
    };
    const QString notOurs = u"move it away"_s;
    const Ground grounds[]{
        {"the database's head", [&] { damage(database, 0); },
         u"Encountering Problem when Accessing Database (1001)"_s, notOurs, databaseProblem},
        {"an empty database", [&] { EXPECT_TRUE(writeFile(database, {})); }, u"(1001)"_s, notOurs,
         databaseProblem},
        {"another program's database",
         [&] {
             QFile::remove(database);
             SqliteDatabase::open(database, {.create = true})->run("CREATE TABLE T (A)");
         },
         u"(1001)"_s, notOurs, databaseProblem},
        {"the database's tables", [&] { damage(database, 4096); }, u""_s, u"database: "_s,
         databaseProblem},
        {"the database's end", [&] { damage(database, -4096); }, {}, u"database: "_s, {}},
        {"the registry's head", [&] { damage(registry, 0); }, u"the settings cannot be read"_s,
         u"registry: "_s, fileProblem},
        {"the registry's tables", [&] { damage(registry, 4096); }, u""_s, u"registry: "_s,
         fileProblem},
        {"no database and no seed",
         [&] {
             QFile::remove(database);
             QFile::remove(filePath(u"windows/RSSChannels.txt"_s));
         },
         u"(1006)"_s,
         {},
         fileProblem},
        {"a file in the device's place",
         [&] {
             QDir(root_.path()).removeRecursively();
             EXPECT_TRUE(writeFile(root_.path(), "x"));
         },
         u"device"_s,
         {},
         fileProblem},
        {"a rival that never lets go",
         [&] { rival.emplace(filePath(u"run/channels.lock"_s)); },
         {},
         {},
         {}},
    };
    addChannel(u"ch"_s, generatedFeed(10, 1));
    ASSERT_EQ(ok(u"update"_s), u"ok\t10\t10/10\tch\n");
    const QString kept = folder_.filePath(u"kept"_s);
    QProcess::execute(u"cp"_s, {u"-a"_s, root_.path(), kept});
    for (const Ground &ground : grounds) {
        SCOPED_TRACE(ground.what);
        ground.spoil();
        const QByteArray spoilt = contentOf(database);
        for (const QString &call : {u"channels"_s, u"articles ch"_s, u"init"_s}) {
            if (!ground.commandWords.isNull())
                fails(call, ground.commandWords);
        }
        if (!rival) {
            EXPECT_TRUE(run(u"check"_s).out.contains(ground.checkWords));
        }
        EXPECT_TRUE(runReader(root_, [&](User &user) {
            EXPECT_TRUE(ground.problem.isNull() ? user.seesRows({u"C"_s})
                                                : user.seesBox(ground.problem))
                << ground.what;
        }));
        EXPECT_TRUE(ground.checkWords != notOurs || contentOf(database) == spoilt);
        rival.reset();
        QProcess::execute(u"rm"_s, {u"-r"_s, root_.path()});
        QProcess::execute(u"cp"_s, {u"-a"_s, kept, root_.path()});
    }
    EXPECT_EQ(ok(u"articles ch"_s).count(u'\n'), 10);
}

} // namespace
} // namespace tidebrook
