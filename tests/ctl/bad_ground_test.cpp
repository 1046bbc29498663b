#include "ctl/ctl_process.h"
#include "feed_server/feed_server.h"
#include "feed_server/generated_feed.h"
#include "platform/sqlite_database.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <unistd.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

/// A device with a channel of ten articles, on ground that then gives way.
class BadGroundTest : public testing::Test {
protected:
    void SetUp() override {
        server_.serve(u"/feed"_s, generatedFeed(10, 1));
        ASSERT_EQ(ctl_.run({u"add"_s, u"C"_s, u"ch"_s, server_.url(u"/feed")}).exitCode, 0);
        ASSERT_EQ(ctl_.run({u"update"_s}).out, u"ok\t10\t10/10\tch\n");
    }

    void damage(const QString &file) {
        QFile database(ctl_.filePath(file));
        ASSERT_TRUE(database.open(QIODevice::ReadWrite));
        database.write(QByteArray(4096, 'x'));
    }

    FeedServer server_;
    CtlProcess ctl_;
};

TEST_F(BadGroundTest, ADamagedDatabaseIsToldByEveryCommandAndLeftAlone) {
    damage(u"RSSVault.sdf"_s);
    for (const QStringList &call :
         QList<QStringList>{{u"channels"_s}, {u"update"_s}, {u"init"_s}}) {
        const CtlRun run = ctl_.run(call);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(run.err.contains(u"Encountering Problem when Accessing Database (1001)"));
    }
    EXPECT_TRUE(ctl_.run({u"check"_s}).out.startsWith(u"database: cannot be opened"));
}

TEST_F(BadGroundTest, APageThatIsDamagedIsFoundByCheck) {
    QFile database(ctl_.filePath(u"RSSVault.sdf"_s));
    ASSERT_TRUE(database.open(QIODevice::ReadWrite));
    database.seek(database.size() - 4096);
    database.write(QByteArray(4096, 'x'));
    database.close();
    const CtlRun check = ctl_.run({u"check"_s});
    EXPECT_EQ(check.exitCode, 1);
    EXPECT_TRUE(check.out.startsWith(u"database: "));
}

TEST_F(BadGroundTest, AMissingLibraryForHttpIsToldAsWhatItIs) {
    const QTemporaryDir libraries;
    ASSERT_TRUE(QFile(libraries.filePath(u"libcurl.so.4"_s)).open(QIODevice::WriteOnly));
    ctl_.setEnvironment(u"LD_LIBRARY_PATH"_s, libraries.path());
    EXPECT_TRUE(ctl_.run({u"update"_s}).out.contains(u"1000"));
    EXPECT_TRUE(ctl_.run({u"import"_s, server_.url(u"/list"), u"X"_s}).err.contains(u"(1000)"));
}

TEST_F(BadGroundTest, DamageBehindTheHeaderIsNeverTakenForEmptiness) {
    for (const QString &file : {u"RSSVault.sdf"_s, u"registry.db"_s}) {
        QFile damaged(ctl_.filePath(file));
        ASSERT_TRUE(damaged.open(QIODevice::ReadWrite));
        const QByteArray sound = damaged.readAll();
        damaged.seek(4096);
        damaged.write(QByteArray(sound.size() - 4096, '\xFF'));
        damaged.close();
        for (const QStringList &call : QList<QStringList>{{u"channels"_s},
                                                          {u"articles"_s, u"ch"_s},
                                                          {u"update"_s},
                                                          {u"init"_s},
                                                          {u"check"_s}}) {
            const CtlRun run = ctl_.run(call);
            EXPECT_EQ(run.exitCode, 1) << call.join(u' ').toUtf8().constData();
            EXPECT_FALSE(run.out.isEmpty() && run.err.isEmpty());
        }
        ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
        damaged.write(sound);
    }
    EXPECT_EQ(ctl_.run({u"articles"_s, u"ch"_s}).lines().size(), 10);
}

TEST_F(BadGroundTest, ADamagedRegistryIsToldAndSeedsNothing) {
    damage(u"registry.db"_s);
    for (const QStringList &call : QList<QStringList>{{u"channels"_s}, {u"init"_s}}) {
        const CtlRun run = ctl_.run(call);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(run.err.contains(u"the settings cannot be read"));
    }
    EXPECT_TRUE(ctl_.run({u"check"_s}).out.startsWith(u"registry: cannot be opened"));
}

TEST_F(BadGroundTest, AMissingRegistryLosesTheCategoriesAndNoArticle) {
    QFile::remove(ctl_.filePath(u"registry.db"_s));
    EXPECT_EQ(ctl_.run({u"check"_s}).out, u"channel \"ch\": its category \"C\" is not listed\n");
    EXPECT_EQ(ctl_.run({u"add-category"_s, u"C"_s}).exitCode, 0);
    EXPECT_EQ(ctl_.run({u"check"_s}).exitCode, 0);
    EXPECT_EQ(ctl_.run({u"articles"_s, u"ch"_s}).lines().size(), 10);
}

TEST_F(BadGroundTest, ADatabaseLockedByAnotherProcessIsStillRead) {
    auto other = SqliteDatabase::open(ctl_.filePath(u"RSSVault.sdf"_s), {});
    ASSERT_TRUE(other);
    const SqliteTransaction lock(*other);
    ASSERT_TRUE(lock.isOpen());
    EXPECT_EQ(ctl_.run({u"articles"_s, u"ch"_s}).lines().size(), 10);
}

TEST_F(BadGroundTest, AFullDiskLosesNothing) {
    server_.serve(u"/feed"_s, generatedFeed(3000, 2));
    const QString limit = u"trap '' XFSZ; ulimit -f 1000"_s; // blocks of 512 bytes: half a megabyte
    const CtlRun update = ctl_.runBehind(limit, {u"update"_s});
    EXPECT_EQ(update.exitCode, 1);
    EXPECT_EQ(update.out, u"error\t1001\tEncountering Problem when Accessing Database\tch\n");
    EXPECT_EQ(ctl_.run({u"check"_s}).out, u"");
    EXPECT_EQ(ctl_.run({u"articles"_s, u"ch"_s}).lines().size(), 10);
    EXPECT_EQ(ctl_.run({u"update"_s}).out, u"ok\t3000\t3010/3010\tch\n");
}

TEST_F(BadGroundTest, ADeviceThatMayOnlyBeReadSaysSo) {
    // Root may write everything, so a root's test runs the command as nobody.
    const QString asNobody = geteuid() == 0 ? u"exec setpriv --reuid=65534 --regid=65534 "
                                              "--clear-groups \"$0\" \"$@\""_s
                                            : u"true"_s;
    if (ctl_.runBehind(asNobody, {u"--version"_s}).exitCode != 0)
        GTEST_SKIP() << "nobody may not run the program where it was built";
    ctl_.makeReadOnly();
    const CtlRun marked = ctl_.runBehind(asNobody, {u"mark"_s, u"ch"_s, u"read"_s});
    EXPECT_EQ(marked.exitCode, 1);
    EXPECT_FALSE(marked.err.isEmpty());
    const CtlRun setting = ctl_.runBehind(asNobody, {u"setting"_s, u"SortMode"_s, u"1"_s});
    EXPECT_EQ(setting.exitCode, 1);
    ctl_.makeWritable();
    EXPECT_EQ(ctl_.run({u"articles"_s, u"ch"_s, u"--order"_s, u"unread"_s}).lines().size(), 10);
}

TEST_F(BadGroundTest, OutputThatIsNotTakenIsAFailure) {
    EXPECT_EQ(ctl_.runBehind(u"exec >/dev/full"_s, {u"articles"_s, u"ch"_s}).exitCode, 1);
}

} // namespace
} // namespace tidebrook
