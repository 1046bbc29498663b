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

} // namespace
} // namespace tidebrook
