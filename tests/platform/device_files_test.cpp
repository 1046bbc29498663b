#include "platform/base/replace_file.h"
#include "platform/desktop/device_watch.h"
#include "platform/sql/registry.h"
#include "support/forked_process.h"
#include "test_device/test_device.h"

#include <QDir>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

QStringList entries(const QString &folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                  QDir::NoDotAndDotDot);
}

TEST(DeviceFiles, WhatKilledWritersLeftIsRemovedByTheNextAndNothingElse) {
    for (const Readers readers : {Readers::Owner, Readers::Usual}) {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"list"_s);
        QStringList own{u"list.backup"_s, u"other.aBcDeF"_s, u"list"_s};
        if (readers == Readers::Usual)
            own.append(u"list.aBcDeF"_s);
        for (const QString &name : own)
            ASSERT_TRUE(writeFile(folder.filePath(name), "mine"));
        const auto writer = startStaying([&](const auto &stay) {
            FileReplacement replacement(path, readers);
            replacement.file().write("half");
            stay();
        });
        EXPECT_TRUE(replaceFile(path, "new", readers));
        EXPECT_EQ(entries(folder.path()).size(), own.size() + 1) << "one is at work";
        writer->kill();
        EXPECT_TRUE(replaceFile(path, "newer", readers));
        const QStringList left = entries(folder.path());
        EXPECT_EQ(QSet(left.begin(), left.end()), QSet(own.begin(), own.end()));
        EXPECT_EQ(QFileInfo(path).size(), 5);
        const bool isUsers = readers == Readers::Usual;
        ASSERT_TRUE(QFile::link(path, folder.filePath(u"link"_s)));
        EXPECT_EQ(replaceFile(folder.filePath(u"link"_s), "newest", readers), isUsers);
        EXPECT_EQ(QFileInfo(path).size(), isUsers ? 6 : 5);
    }
}

TEST(DeviceFiles, WhatAKilledFirstStartLeftIsRemovedByTheNextAndNothingElse) {
    const QTemporaryDir folder;
    const DeviceRoot root(folder.filePath(u"device"_s));
    ASSERT_TRUE(QDir().mkpath(folder.filePath(u"device.new-design/mine"_s)));
    ASSERT_TRUE(QFile::link(folder.filePath(u"device.new-design"_s),
                            folder.filePath(u"device.new-aBcDeF"_s)));
    const auto builder = startStaying([&](const auto &stay) {
        root.provision([&](const DeviceRoot &built) {
            Registry registry(built);
            stay();
            return true;
        });
    });
    const auto fill = [](const DeviceRoot &) { return true; };
    EXPECT_TRUE(root.provision(fill));
    EXPECT_EQ(entries(folder.path()).size(), 4) << "one is at work";
    builder->kill();
    EXPECT_TRUE(root.provision(fill));
    EXPECT_EQ(entries(folder.path()),
              (QStringList{u"device"_s, u"device.new-aBcDeF"_s, u"device.new-design"_s}));
    EXPECT_TRUE(QFileInfo::exists(folder.filePath(u"device.new-design/mine"_s)));
}

TEST(DeviceFiles, ADeviceThatComesOrGoesWhileTheScopeChangesHasMoved) {
    const QTemporaryDir folder;
    const DeviceRoot device(folder.filePath(u"device"_s));
    DeviceWatch watch(device);
    int moves = 0;
    QObject::connect(&watch, &DeviceWatch::moved, &watch, [&moves] { ++moves; });
    watch.setScope(DeviceWatch::Scope::Content);
    ASSERT_TRUE(device.makeFolders());
    watch.setScope(DeviceWatch::Scope::Place);
    EXPECT_EQ(moves, 1);
    ASSERT_TRUE(QDir(device.path()).removeRecursively());
    watch.setScope(DeviceWatch::Scope::Content);
    watch.setScope(DeviceWatch::Scope::Place);
    EXPECT_EQ(moves, 2);
}

} // namespace
} // namespace tidebrook
