#include "ctl/ctl_process.h"
#include "feed_server/generated_feed.h"
#include "platform/sql/registry.h"
#include "platform/sql/sqlite_database.h"

#include <QDir>
#include <QFile>

#include <unistd.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

const QString database = u"RSSVault.sdf"_s;

/// A device with a channel of ten articles, on ground that then gives way.
class BadGroundTest : public CtlTest {
protected:
    void SetUp() override {
        addChannel(u"ch"_s, generatedFeed(10, 1));
        ASSERT_EQ(ok(u"update"_s), u"ok\t10\t10/10\tch\n");
    }

    void expectTheArticles() { EXPECT_EQ(ok(u"articles ch"_s).count(u'\n'), 10); }

    /// Puts a folder in the place of a file, which is kept beside it.
    void block(const QString &file) {
        const QString path = filePath(file);
        QFile::rename(path, path + u".kept");
        ASSERT_TRUE(QDir().mkpath(path));
    }
    void unblock(const QString &file) {
        const QString path = filePath(file);
        ASSERT_TRUE(QDir().rmdir(path));
        QFile::rename(path + u".kept", path);
    }
};

TEST_F(BadGroundTest, AMissingLibraryForHttpIsToldAsWhatItIs) {
    const QTemporaryDir libraries;
    ASSERT_TRUE(writeFile(libraries.filePath(u"libcurl.so.4"_s), {}));
    environment_.insert(u"LD_LIBRARY_PATH"_s, libraries.path());
    EXPECT_TRUE(run(u"update"_s).out.contains(u"1000"));
    fails(u"import %1 X"_s.arg(server_.url(u"/list")), u"(1000)"_s);
}

TEST_F(BadGroundTest, AMissingRegistryLosesTheCategoriesAndNoArticle) {
    QFile::remove(filePath(u"registry.db"_s));
    EXPECT_EQ(run(u"check"_s).out, u"channel \"ch\": its category \"C\" is not listed\n");
    ok(u"init"_s);
    expectSound();
    expectTheArticles();
    EXPECT_EQ(ok(u"setting UpdateInterval"_s), u"1\n");
    EXPECT_EQ(ok(u"setting Enabled --today"_s), u"1\n");
}

TEST_F(BadGroundTest, ADatabaseLockedByAnotherProcessIsStillReadAndLosesNothing) {
    auto other = SqliteDatabase::open(filePath(database), {});
    ASSERT_TRUE(other);
    const SqliteTransaction lock(*other);
    ASSERT_TRUE(lock.isOpen());
    EXPECT_TRUE(run(u"update"_s).out.startsWith(u"error\t1001\t"));
    EXPECT_EQ(ok(u"setting ERRORNO"_s), u"1001\n");
    expectTheArticles();
}

TEST_F(BadGroundTest, CategoriesThatCannotBeSeededFailTheInit) {
    ok(u"delete-category C"_s);
    ASSERT_TRUE(writeFile(filePath(u"windows/RSSChannels.txt"_s), utf16(u"n\tu\tSeeded\n"_s)));
    {
        Registry registry(root_);
        const Registry::Batch lock(registry);
        ASSERT_TRUE(lock.isOpen());
        fails(u"init"_s, u"categories"_s);
    }
    EXPECT_TRUE(ok(u"init"_s).startsWith(u"1 categories, 0 channels\t"));
}

TEST_F(BadGroundTest, AnAutomaticListThatIsNotToBeHadIsAFailureOfWhatNeedsIt) {
    for (const QString &name : {u"a"_s, u"b"_s, u"c"_s, u"d"_s}) {
        ok(u"add --create %1 %2 http://x/"_s.arg(name == u"d" ? u"D"_s : u"C"_s, name));
        ok(u"auto add " + name);
    }
    const QString list = u"windows/UpdateChannel.list"_s;
    const QString words = u"the list of automatic updates"_s;
    block(list);
    for (const QString &call : {u"auto list"_s, u"updates"_s, u"auto add ch"_s, u"auto remove b"_s,
                                u"rename b new"_s, u"delete c"_s, u"delete-category D"_s})
        fails(call, words);
    unblock(list);
    EXPECT_EQ(ok(u"channels"_s).count(u'\n'), 3) << "what is deleted is gone";
    EXPECT_EQ(ok(u"categories"_s), u"C\n");
    ok(u"rename b new"_s);
    EXPECT_EQ(ok(u"auto list"_s), u"a\tC\thttp://x/\nnew\tC\thttp://x/\n")
        << "what was deleted goes with the next change";
}

TEST_F(BadGroundTest, ALockThatCannotBeTakenIsAFailure) {
    const QString source = filePath(u"list.opml"_s);
    ok(u"export C " + source);
    block(u"run/channels.lock"_s);
    for (const QString &call : {u"init"_s, u"categories"_s, u"delete ch"_s, u"auto list"_s,
                                u"import %1 N"_s.arg(source), u"update"_s, u"check"_s})
        fails(call, u"channels.lock"_s);
    unblock(u"run/channels.lock"_s);
    EXPECT_EQ(ok(u"categories"_s), u"C\n");
}

TEST_F(BadGroundTest, AFullDiskLosesNothing) {
    server_.serve(u"/ch"_s, generatedFeed(3000, 2));
    const QString limit = u"trap '' XFSZ; ulimit -f 1000"_s; // blocks of 512 bytes: half a megabyte
    EXPECT_EQ(run(u"update"_s, limit).out,
              u"error\t1001\tEncountering Problem when Accessing Database\tch\n");
    expectSound();
    expectTheArticles();
    EXPECT_EQ(ok(u"update"_s), u"ok\t3000\t3010/3010\tch\n");
}

TEST_F(BadGroundTest, ADeviceThatMayOnlyBeReadSaysSo) {
    // Root may write everything, so a root's test runs the command as nobody.
    const QString asNobody = geteuid() == 0 ? u"exec setpriv --reuid=65534 --regid=65534 "
                                              "--clear-groups \"$0\" \"$@\""_s
                                            : u"true"_s;
    if (run(u"--version"_s, asNobody).exitCode != 0)
        GTEST_SKIP() << "nobody may not run the program where it was built";
    const QString readOnly = u"cd $TIDEBROOK_HOME && chmod a+x .. && chmod -R a=rX . && "_s;
    for (const QString &call : {u"mark ch read"_s, u"setting SortMode 1"_s, u"delete ch"_s}) {
        const CtlRun refused = run(call, readOnly + asNobody);
        EXPECT_EQ(refused.exitCode, 1);
        EXPECT_FALSE(refused.err.isEmpty());
    }
    run(u"--version"_s, u"chmod -R u+w $TIDEBROOK_HOME"_s);
    EXPECT_EQ(ok(u"articles ch --order unread"_s).count(u'\n'), 10);
}

TEST_F(BadGroundTest, OutputThatIsNotTakenIsAFailure) {
    EXPECT_EQ(run(u"articles ch"_s, u"exec >/dev/full"_s).exitCode, 1);
}

} // namespace
} // namespace tidebrook
