#include "platform/file_lock.h"
#include "platform/named_event.h"
#include "platform/named_mutex.h"
#include "platform/process_lock.h"
#include "platform/registry.h"
#include "platform/replace_file.h"
#include "platform/single_instance.h"
#include "support/forked_process.h"
#include "support/obstacle.h"
#include "support/test_device.h"

#include <QDir>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

QStringList entries(const QString &folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                  QDir::NoDotAndDotDot);
}

/// A process that is in the middle of what it makes aside, until it is killed.
std::unique_ptr<ForkedProcess> maker(const std::function<void(const SharedCount &)> &make) {
    const SharedCount isMaking;
    auto process = std::make_unique<ForkedProcess>([&] {
        make(isMaking);
        return 0;
    });
    EXPECT_TRUE(isMaking.wait());
    return process;
}

void stop(const SharedCount &isMaking) {
    isMaking.add();
    pause();
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
        const auto writer = maker([&](const SharedCount &isMaking) {
            FileReplacement replacement(path, readers);
            replacement.file().write("half");
            stop(isMaking);
        });
        EXPECT_TRUE(replaceFile(path, "new", readers));
        EXPECT_EQ(entries(folder.path()).size(), own.size() + 1) << "one is at work";
        writer->kill();
        writer->wait();
        EXPECT_TRUE(replaceFile(path, "newer", readers));
        const QStringList left = entries(folder.path());
        EXPECT_EQ(QSet(left.begin(), left.end()), QSet(own.begin(), own.end()));
        EXPECT_EQ(QFileInfo(path).size(), 5);
    }
}

TEST(DeviceFiles, WhatAKilledFirstStartLeftIsRemovedByTheNextAndNothingElse) {
    const QTemporaryDir folder;
    const DeviceRoot root(folder.filePath(u"device"_s));
    ASSERT_TRUE(QDir().mkpath(folder.filePath(u"device.new-design/mine"_s)));
    ASSERT_TRUE(QFile::link(folder.filePath(u"device.new-design"_s),
                            folder.filePath(u"device.new-aBcDeF"_s)));
    const auto builder = maker([&](const SharedCount &isMaking) {
        root.provision([&](const DeviceRoot &built) {
            Registry registry(built);
            stop(isMaking);
            return true;
        });
    });
    const auto furnish = [](const DeviceRoot &) { return true; };
    EXPECT_TRUE(root.provision(furnish));
    EXPECT_EQ(entries(folder.path()).size(), 4) << "one is at work";
    builder->kill();
    builder->wait();
    EXPECT_TRUE(root.provision(furnish));
    EXPECT_EQ(entries(folder.path()),
              (QStringList{u"device"_s, u"device.new-aBcDeF"_s, u"device.new-design"_s}));
    EXPECT_TRUE(QFileInfo::exists(folder.filePath(u"device.new-design/mine"_s)));
}

} // namespace
} // namespace tidebrook
