#include "ctl/ctl_process.h"
#include "feed_server/generated_feed.h"
#include "platform/file_lock.h"
#include "platform/registry.h"
#include "platform/sqlite_database.h"
#include "store/settings_store.h"

#include <QDir>
#include <QFile>

#include <unistd.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

/// A device with a channel of ten articles, on ground that then gives way.
class BadGroundTest : public CtlTest {
protected:
    void SetUp() override {
        server_.serve(u"/feed"_s, generatedFeed(10, 1));
        ok(u"add C ch " + server_.url(u"/feed"));
        ASSERT_EQ(ok(u"update"_s), u"ok\t10\t10/10\tch\n");
    }

    /// Writes over a file from `begin`, or from that far before its end.
    void damage(const QString &file, qint64 begin, qsizetype size = 4096) {
        QFile damaged(ctl_.filePath(file));
        ASSERT_TRUE(damaged.open(QIODevice::ReadWrite));
        damaged.seek(begin < 0 ? damaged.size() + begin : begin);
        damaged.write(QByteArray(size, '\xFF'));
    }

    /// Puts a folder in the place of a file, which is kept beside it.
    void block(const QString &file) {
        const QString path = ctl_.filePath(file);
        QFile::rename(path, path + u".kept");
        ASSERT_TRUE(QDir().mkpath(path));
    }
    void unblock(const QString &file) {
        const QString path = ctl_.filePath(file);
        ASSERT_TRUE(QDir().rmdir(path));
        QFile::rename(path + u".kept", path);
    }
};

TEST_F(BadGroundTest, ADamagedFileIsToldByEveryCommandAndNeverTakenForEmptiness) {
    struct Case {
        QString file;
        qint64 begin;
        QString words;
    };
    const Case cases[] = {
        {u"RSSVault.sdf"_s, 0, u"Encountering Problem when Accessing Database (1001)"_s},
        {u"RSSVault.sdf"_s, 4096, {}},
        {u"registry.db"_s, 0, u"the settings cannot be read"_s},
        {u"registry.db"_s, 4096, {}},
    };
    for (const Case &test : cases) {
        SCOPED_TRACE(test.file.toStdString());
        QFile sound(ctl_.filePath(test.file));
        ASSERT_TRUE(sound.open(QIODevice::ReadOnly));
        const QByteArray content = sound.readAll();
        sound.close();
        damage(test.file, test.begin, content.size() - test.begin);
        for (const QString &call : {u"channels"_s, u"articles ch"_s, u"init"_s})
            fails(call, test.words);
        const QString file = test.file == u"registry.db" ? u"registry: "_s : u"database: "_s;
        EXPECT_TRUE(run(u"check"_s).out.startsWith(file));
        ASSERT_TRUE(sound.open(QIODevice::WriteOnly));
        sound.write(content);
        sound.close();
    }
    EXPECT_EQ(ok(u"articles ch"_s).count(u'\n'), 10);
    damage(u"RSSVault.sdf"_s, -4096);
    EXPECT_TRUE(run(u"check"_s).out.startsWith(u"database: ")) << "one page of it";
}

TEST_F(BadGroundTest, AMissingLibraryForHttpIsToldAsWhatItIs) {
    const QTemporaryDir libraries;
    ASSERT_TRUE(QFile(libraries.filePath(u"libcurl.so.4"_s)).open(QIODevice::WriteOnly));
    ctl_.setEnvironment(u"LD_LIBRARY_PATH"_s, libraries.path());
    EXPECT_TRUE(run(u"update"_s).out.contains(u"1000"));
    fails(u"import %1 X"_s.arg(server_.url(u"/list")), u"(1000)"_s);
}

TEST_F(BadGroundTest, AMissingRegistryLosesTheCategoriesAndNoArticle) {
    QFile::remove(ctl_.filePath(u"registry.db"_s));
    EXPECT_EQ(run(u"check"_s).out, u"channel \"ch\": its category \"C\" is not listed\n");
    ok(u"add-category C"_s);
    expectSound();
    EXPECT_EQ(ok(u"articles ch"_s).count(u'\n'), 10);
}

TEST_F(BadGroundTest, ADatabaseLockedByAnotherProcessIsStillRead) {
    auto other = SqliteDatabase::open(ctl_.filePath(u"RSSVault.sdf"_s), {});
    ASSERT_TRUE(other);
    const SqliteTransaction lock(*other);
    ASSERT_TRUE(lock.isOpen());
    EXPECT_EQ(ok(u"articles ch"_s).count(u'\n'), 10);
}

TEST_F(BadGroundTest, CategoriesThatCannotBeSeededFailTheInit) {
    ok(u"delete-category C"_s);
    QFile seed(ctl_.filePath(u"windows/RSSChannels.txt"_s));
    ASSERT_TRUE(seed.open(QIODevice::WriteOnly));
    const QString line = u"n\tu\tSeeded\n"_s;
    seed.write(reinterpret_cast<const char *>(line.utf16()), 2 * line.size());
    seed.close();
    {
        Registry registry{DeviceRoot(ctl_.root())};
        const Registry::Batch lock(registry);
        ASSERT_TRUE(lock.isOpen());
        fails(u"init"_s, u"categories"_s);
    }
    EXPECT_EQ(ok(u"init"_s), u"1 categories, 0 channels\n");
}

TEST_F(BadGroundTest, AnAutomaticListThatIsNotToBeHadIsAFailureOfWhatNeedsIt) {
    for (const QString &name : {u"a"_s, u"b"_s, u"c"_s, u"d"_s}) {
        ok(u"add %1 %2 http://x/"_s.arg(name == u"d" ? u"D"_s : u"C"_s, name));
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
    const QString source = ctl_.filePath(u"list.opml"_s);
    ok(u"export C " + source);
    block(u"run/channels.lock"_s);
    for (const QString &call : {u"init"_s, u"categories"_s, u"delete ch"_s, u"auto list"_s,
                                u"import %1 N"_s.arg(source), u"update"_s, u"check"_s})
        fails(call, u"channels.lock"_s);
    unblock(u"run/channels.lock"_s);
    EXPECT_EQ(ok(u"categories"_s), u"C\n");
}

TEST_F(BadGroundTest, ACheckBesideARenamingWaitsForItsEnd) {
    const DeviceRoot root(ctl_.root());
    Registry registry(root);
    auto lock = std::make_unique<FileLock>(root.filePath(u"\\run\\channels.lock"));
    const auto setCount = [&](quint32 count) {
        registry.write(programKey, u"CategoryNumber", count);
    };
    setCount(2);
    const auto check = ctl_.start({u"check"_s});
    // The system tells who waits for a lock, behind an arrow.
    const QByteArray waiter = "ADVISORY  WRITE " + QByteArray::number(check->processId()) + ' ';
    waitFor([&] {
        QFile locks(u"/proc/locks"_s);
        locks.open(QIODevice::ReadOnly);
        return check->waitForFinished(0) || locks.readAll().contains(waiter);
    });
    setCount(1);
    lock.reset();
    check->waitForFinished();
    EXPECT_EQ(check->exitCode(), 0) << check->readAllStandardOutput().constData();
}

TEST_F(BadGroundTest, AFullDiskLosesNothing) {
    server_.serve(u"/feed"_s, generatedFeed(3000, 2));
    const QString limit = u"trap '' XFSZ; ulimit -f 1000"_s; // blocks of 512 bytes: half a megabyte
    const CtlRun update = ctl_.runBehind(limit, {u"update"_s});
    EXPECT_EQ(update.exitCode, 1);
    EXPECT_EQ(update.out, u"error\t1001\tEncountering Problem when Accessing Database\tch\n");
    expectSound();
    EXPECT_EQ(ok(u"articles ch"_s).count(u'\n'), 10);
    EXPECT_EQ(ok(u"update"_s), u"ok\t3000\t3010/3010\tch\n");
}

TEST_F(BadGroundTest, ADeviceThatMayOnlyBeReadSaysSo) {
    // Root may write everything, so a root's test runs the command as nobody.
    const QString asNobody = geteuid() == 0 ? u"exec setpriv --reuid=65534 --regid=65534 "
                                              "--clear-groups \"$0\" \"$@\""_s
                                            : u"true"_s;
    if (ctl_.runBehind(asNobody, {u"--version"_s}).exitCode != 0)
        GTEST_SKIP() << "nobody may not run the program where it was built";
    ctl_.makeReadOnly();
    for (const QString &call : {u"mark ch read"_s, u"setting SortMode 1"_s, u"delete ch"_s}) {
        const CtlRun refused = ctl_.runBehind(asNobody, split(call));
        EXPECT_EQ(refused.exitCode, 1);
        EXPECT_FALSE(refused.err.isEmpty());
    }
    ctl_.makeWritable();
    EXPECT_EQ(ok(u"articles ch --order unread"_s).count(u'\n'), 10);
}

TEST_F(BadGroundTest, OutputThatIsNotTakenIsAFailure) {
    EXPECT_EQ(ctl_.runBehind(u"exec >/dev/full"_s, {u"articles"_s, u"ch"_s}).exitCode, 1);
}

} // namespace
} // namespace tidebrook
