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

struct Opening {
    QString file;
    std::function<bool(const DeviceRoot &)> isDone;
};

bool writesRegistry(const DeviceRoot &root) {
    return Registry(root).write(u"Key", u"name", quint32{1});
}

const Opening openings[]{
    {u"registry.db"_s, writesRegistry},
    {u"registry.db-wal"_s, writesRegistry},
    {u"registry.db-shm"_s, writesRegistry},
    {u"run/some.lock"_s,
     [](const DeviceRoot &root) { return FileLock(root.path() + u"/run/some.lock").isHeld(); }},
    {u"run/process.lock"_s,
     [](const DeviceRoot &root) {
         const QString path = root.path() + u"/run/process.lock";
         return ProcessLock::holder(path) || ProcessLock(path).isHeld();
     }},
    {u"run/some.mutex"_s,
     [](const DeviceRoot &root) { return NamedMutex(root, u"some").isOpen(); }},
    {u"run/some.event"_s,
     [](const DeviceRoot &root) {
         NamedEvent event(root, u"some", NamedEvent::Reset::Auto);
         return event.isOpen() || event.set() || event.test();
     }},
    {u"run/FEEDLARK.lock"_s,
     [](const DeviceRoot &root) {
         return SingleInstance(root).claim(1h) != SingleInstance::Claim::Failed;
     }},
    {u"run/FEEDLARK.token"_s,
     [](const DeviceRoot &root) {
         SingleInstance instance(root);
         instance.claim(0ms);
         NamedEvent(root, u"FEEDLARK", NamedEvent::Reset::Manual).set();
         return instance.takeRequest() != QString();
     }},
    {u"windows/list"_s,
     [](const DeviceRoot &root) { return replaceFile(root.path() + u"/windows/list", "new"); }},
};

TEST(DeviceFiles, WhatIsNoPlainFileIsRefusedAtOnceAndLeftAlone) {
    for (const Opening &opening : openings) {
        for (const QString &kind : obstacles) {
            if (kind == u"fifo" && opening.file.endsWith(u".event"))
                continue;
            SCOPED_TRACE(opening.file.toStdString() + " is a " + kind.toStdString());
            const QTemporaryDir folder;
            const DeviceRoot root(folder.filePath(u"device"_s));
            ASSERT_TRUE(root.makeFolders());
            ASSERT_TRUE(!opening.file.startsWith(u"registry.db-") || writesRegistry(root));
            const QString target = folder.filePath(u"target"_s);
            ASSERT_TRUE(writeFile(target, "precious"));
            const QString path = root.path() + u'/' + opening.file;
            ASSERT_TRUE(putObstacle(kind, path, target));
            const auto before = fileThere(path);
            const QStringList beside = entries(QFileInfo(path).path());
            ForkedProcess process([&] { return opening.isDone(root) ? 1 : 0; });
            EXPECT_EQ(process.wait(), 0) << "opened, or it hung";
            EXPECT_EQ(fileThere(path), before);
            EXPECT_EQ(QFileInfo(target).size(), 8) << "the link was followed";
            EXPECT_TRUE(!opening.file.startsWith(u"windows") ||
                        entries(QFileInfo(path).path()) == beside);
        }
    }
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
