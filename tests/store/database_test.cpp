#include "store/store_check.h"
#include "test_device/test_device.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

const QString seed = u"BBC\thttp://b/\tNews\r\n"
                     "Ars \thttp://a/ \tTech \r\n"
                     "BBC\thttp://c/\tNews"_s;

TEST(Database, IsCreatedFromTheSeedFileOnce) {
    TestDevice device(seed);
    ASSERT_TRUE(device.store->Open());
    EXPECT_EQ(device.channelNames(u"Tech"_s), QStringList(u"Ars"_s));
    QStringList news = device.channelNames(u"News"_s);
    ASSERT_EQ(news.size(), 2);
    EXPECT_TRUE(news.removeOne(u"BBC"_s));
    EXPECT_TRUE(news[0].startsWith(u"BBC-"));
    QString link;
    EXPECT_TRUE(device.store->GetChannelLink(u"Tech"_s, u"Ars"_s, link));
    EXPECT_EQ(link, u"http://a/");

    device.restart();
    ASSERT_TRUE(device.store->Open());
    EXPECT_EQ(device.channelNames(u"News"_s).size(), 2);
}

TEST(Database, SeedFieldsAreCutToTheirCapacities) {
    const QString longName(60, u'n');
    TestDevice device(u"\uFEFF"_s + longName + u"\thttp://l/\tC\nnameOnly\n");
    ASSERT_TRUE(device.store->Open());
    EXPECT_EQ(device.channelNames(u"C"_s), QStringList(longName.left(50)));
    EXPECT_EQ(device.channelNames(u""_s), QStringList(u"nameOnly"_s));
}

TEST(Database, WithoutASeedFileNothingIsCreated) {
    TestDevice device{QString()};
    EXPECT_FALSE(device.store->Open());
    EXPECT_EQ(device.store->error(), 1006u);
    EXPECT_TRUE(QDir(device.root.path()).entryList({u"RSSVault*"_s}).isEmpty());
    EXPECT_TRUE(QDir(device.root.filePath(u"\\Temp")).isEmpty());
    writeFile(device.root.filePath(u"\\windows\\RSSChannels.txt"), utf16(seed));
    EXPECT_TRUE(device.store->Open()) << "the next start must try again";
}

QByteArray foreignDatabase() {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"other.db"_s);
    SqliteDatabase::open(path, {.create = true})->run("CREATE TABLE T (A)");
    return contentOf(path);
}

TEST(Database, AFileThatIsNoneOfOursIsToldWithWhatToDoAndLeftAsItIs) {
    for (const QByteArray &content :
         {QByteArray(), QByteArray("this is not a database at all, but a long text"),
          foreignDatabase()}) {
        SCOPED_TRACE(content.left(20).toStdString());
        TestDevice device;
        const QString path = device.root.filePath(u"RSSVault.sdf");
        ASSERT_TRUE(writeFile(path, content));
        EXPECT_FALSE(device.store->Open());
        EXPECT_EQ(device.store->error(), 1001u);
        device.store->clearError();
        EXPECT_FALSE(device.store->PublishTotalUnread());
        EXPECT_EQ(device.store->error(), 1001u) << "an operation without a database";
        EXPECT_FALSE(device.store->InsertChannel({u"c"_s, u"n"_s, u"l"_s}));
        const QString told = checkStore(device.root, *device.registry).value(0);
        EXPECT_TRUE(told.startsWith(u"database: cannot be opened: ")) << told.toStdString();
        EXPECT_TRUE(told.contains(u"move it away")) << told.toStdString();
        device.restart();
        EXPECT_TRUE(contentOf(path) == content);
    }
}

TEST(Database, AJournalLeftFromAnotherDatabaseIsNotTakenForItsOwn) {
    TestDevice device;
    ASSERT_TRUE(device.store->Open());
    device.addChannel(u"C"_s, u"old"_s);
    const QString path = device.root.filePath(u"RSSVault.sdf");
    ASSERT_TRUE(QFile::copy(path + u"-wal", path + u".saved"));
    device.store->Close();
    QFile::remove(path);
    QFile::rename(path + u".saved", path + u"-wal");
    device.restart();
    ASSERT_TRUE(device.store->Open());
    EXPECT_EQ(device.channelNames(u"C"_s), QStringList());
    device.addChannel(u"C"_s, u"new"_s);
    EXPECT_EQ(device.channelNames(u"C"_s), QStringList(u"new"_s));
}

} // namespace
} // namespace tidebrook
