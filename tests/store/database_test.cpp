#include "test_device/test_device.h"

#include <QFile>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

TEST(Database, SeedFieldsAreTrimmedAndCutToTheirCapacities) {
    const QString longName(60, u'n');
    TestDevice device(u"\uFEFF"_s + longName +
                      u"\thttp://l/\tC\nArs \thttp://a/ \tTech \r\nnameOnly\n");
    ASSERT_TRUE(device.store->Open());
    EXPECT_EQ(device.channelNames(u"C"_s), QStringList(longName.left(50)));
    EXPECT_EQ(device.channelNames(u"Tech"_s), QStringList(u"Ars"_s));
    EXPECT_EQ(device.channelNames(u""_s), QStringList(u"nameOnly"_s));
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
