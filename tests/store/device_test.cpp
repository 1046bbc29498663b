#include "platform/base/plain_file.h"
#include "platform/base/replace_file.h"
#include "platform/desktop/single_instance.h"
#include "platform/sync/file_lock.h"
#include "platform/sync/named_mutex.h"
#include "platform/sync/process_lock.h"
#include "store/provisioning.h"
#include "store/seeding.h"
#include "store/store_check.h"
#include "store/update_state.h"
#include "support/forked_process.h"
#include "support/full_disk.h"
#include "test_device/test_device.h"

#include <QDir>
#include <QDirIterator>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

const QByteArray seed = utf16(u"a\thttp://a/\tOne\r\nb\thttp://b/\tTwo\r\n"_s);

bool firstStart(const DeviceRoot &root) {
    if (!provisionDevice(root, seed, testTodayKey.toString()) || !root.makeFolders())
        return false;
    Registry registry(root);
    quint32 count = 0;
    SettingsStore(registry).RegReadDword(programKey, u"CategoryNumber", count);
    return (count != 0 || seedCategories(root, registry)) &&
           FeedStore(root, registry, testTodayKey.toString()).Open();
}

/// What a device holds, and what it lacks.
QStringList faultsOf(const DeviceRoot &root) {
    Registry registry(root);
    FeedStore store(root, registry, testTodayKey.toString());
    QStringList channels;
    store.Open();
    store.ListChannelCategories(channels);
    QStringList faults = checkStore(root, registry);
    if (channels.size() != 2 || registry.read(testTodayKey, u"TodayTimer") == std::nullopt)
        faults.append(u"not all that a device comes with is there"_s);
    return faults;
}

enum Outcome { StartedAtOnce, StartedWithRoom, NeverStarts, NoDisk };

Outcome startOnDisk(const QString &folder, int kib) {
    const DeviceRoot root(folder + u"/device");
    if (!mountDisk(folder, kib))
        return NoDisk;
    const bool isStarted = firstStart(root);
    if (!mountDisk(folder, 65'536, true))
        return NoDisk;
    if (!firstStart(root) || !faultsOf(root).isEmpty())
        return NeverStarts;
    return isStarted ? StartedAtOnce : StartedWithRoom;
}

TEST(FirstStart, OnAFullDiskIsMadeUpForByTheNextOneWithRoom) {
    Outcome outcome = StartedWithRoom;
    int kib = 4;
    // Most of what can be left half done is left by disks of 100 to 300 KiB.
    for (; kib < 1000 && outcome == StartedWithRoom; kib += kib >= 96 && kib < 320 ? 4 : 23) {
        const QTemporaryDir folder;
        outcome = static_cast<Outcome>(
            ForkedProcess([&] { return startOnDisk(folder.path(), kib); }).wait());
        if (outcome == NoDisk)
            GTEST_SKIP() << "this system lets nobody have a disk of his own";
        EXPECT_NE(outcome, NeverStarts) << kib;
        if (outcome == NeverStarts)
            outcome = StartedWithRoom;
    }
    EXPECT_EQ(outcome, StartedAtOnce);
    EXPECT_GT(kib, 100) << "no disk was full";
}

/// How a program comes to open a file of the device, and whether it succeeded.
struct Opening {
    QString file;
    std::function<bool(TestDevice &)> isDone;
};

/// The mode and number of what lies at a path, to see that it stays.
QList<quint64> fileThere(const QString &path) {
    struct stat status {};
    if (lstat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return {status.st_mode, status.st_ino};
}

/// Puts what is no plain file in a file's place. A device of the machine must not be in reach:
/// where none can be made, a pipe stands for it.
bool putObstacle(const QString &kind, const QString &path, const QString &target) {
    const QByteArray name = QFile::encodeName(path);
    QFile::remove(path);
    if (kind == u"folder")
        return mkdir(name.constData(), 0700) == 0;
    if (kind == u"socket")
        return mknod(name.constData(), S_IFSOCK | 0600, 0) == 0;
    if (kind == u"device" && mknod(name.constData(), S_IFCHR | 0600, makedev(1, 5)) == 0)
        return true;
    if (kind == u"pipe" || kind == u"device")
        return mkfifo(name.constData(), 0600) == 0;
    return QFile::link(kind == u"link" ? target : path + u".nowhere", path);
}

bool opensStore(TestDevice &device) { return device.store->Open(); }
bool writesRegistry(TestDevice &device) {
    return Registry(device.root).write(programKey, u"name", quint32{1});
}
QString runPath(TestDevice &device, const QString &name) {
    return device.root.path() + u"/run/" + name;
}

const Opening openings[]{
    {u"RSSVault.sdf"_s, opensStore},
    {u"RSSVault.sdf-wal"_s, opensStore},
    {u"RSSVault.sdf-shm"_s, opensStore},
    {u"registry.db"_s, writesRegistry},
    {u"registry.db-wal"_s, writesRegistry},
    {u"windows/RSSChannels.txt"_s, opensStore},
    {u"UpdateState.db"_s,
     [](TestDevice &device) {
         return UpdateStateStore(device.root).change(u"c"_s, [](UpdateState &) {});
     }},
    {u"windows/list"_s,
     [](TestDevice &device) {
         const QString path = device.root.filePath(u"\\windows\\list");
         return readPlainFile(path, 1000) || replaceFile(path, "new");
     }},
    {u"run/some.lock"_s,
     [](TestDevice &device) { return FileLock(runPath(device, u"some.lock"_s)).isHeld(); }},
    {u"run/own.lock"_s,
     [](TestDevice &device) {
         const QString path = runPath(device, u"own.lock"_s);
         return ProcessLock::holder(path) || ProcessLock(path).isHeld();
     }},
    {u"run/some.mutex"_s,
     [](TestDevice &device) { return NamedMutex(device.root, u"some").isOpen(); }},
    {u"run/some.event"_s,
     [](TestDevice &device) {
         NamedEvent event(device.root, u"some", NamedEvent::Reset::Auto);
         return event.isOpen() || event.set() || event.test();
     }},
    {u"run/FEEDLARK.lock"_s,
     [](TestDevice &device) {
         return SingleInstance(device.root).claim(1h) != SingleInstance::Claim::Failed;
     }},
    {u"run/FEEDLARK.token"_s,
     [](TestDevice &device) {
         SingleInstance instance(device.root);
         instance.claim(0ms);
         NamedEvent(device.root, u"FEEDLARK", NamedEvent::Reset::Manual).set();
         return instance.takeRequest() != QString();
     }},
};

TEST(DeviceFiles, WhatIsNoPlainFileIsRefusedAtOnceAndLeftAlone) {
    for (const Opening &opening : openings) {
        for (const QString &kind :
             {u"pipe"_s, u"folder"_s, u"socket"_s, u"device"_s, u"link"_s, u"dangling link"_s}) {
            SCOPED_TRACE(qPrintable(opening.file + u" is a " + kind));
            TestDevice device;
            const QString path = device.root.path() + u'/' + opening.file;
            const QString target = device.root.path() + u"/target";
            ASSERT_TRUE(writeFile(target, "precious") && putObstacle(kind, path, target));
            const auto before = fileThere(path);
            // An event that is a pipe is as it should be.
            const bool isEvent = opening.file.endsWith(u".event") && S_ISFIFO(before[0]);
            EXPECT_EQ(ForkedProcess([&] { return opening.isDone(device) ? 1 : 0; }).wait(), isEvent)
                << "opened, or it hung";
            EXPECT_EQ(fileThere(path), before);
            EXPECT_EQ(contentOf(target), "precious") << "the link was followed";
            EXPECT_FALSE(QFile::exists(path + u".nowhere"));
        }
    }
}

/// What others than its owner may enter or read.
QStringList openToOthers(const QString &folder) {
    QStringList found;
    QDirIterator all(folder, QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext()) {
        if (const QString path = all.next(); (fileThere(path)[0] & 077U) != 0)
            found.append(path);
    }
    return found;
}

TEST(DeviceFiles, AreTheirOwnersAloneWhateverTheUmask) {
    const mode_t usual = umask(022);
    for (const mode_t mask : {0U, 022U, 077U}) {
        for (const bool isFolderThere : {false, true}) {
            umask(mask);
            const QTemporaryDir folder;
            const DeviceRoot root(folder.filePath(u"device"_s));
            ASSERT_TRUE(!isFolderThere || QDir().mkdir(root.path()));
            ASSERT_TRUE(root.provision([](const DeviceRoot &) { return true; }));
            ASSERT_TRUE(root.makeFolders());
            ASSERT_TRUE(replaceFile(root.filePath(u"\\windows\\RSSChannels.txt"), seed));
            Registry registry(root);
            ASSERT_TRUE(registry.write(programKey, u"name", quint32{1}));
            FeedStore store(root, registry, testTodayKey.toString());
            ASSERT_TRUE(store.Open() && store.MarkChannelRead(u"a"_s));
            UpdateStateStore states(root);
            ASSERT_TRUE(states.change(u"c"_s, [](UpdateState &) {}));
            SingleInstance instance(root);
            ASSERT_EQ(instance.claim(0ms), SingleInstance::Claim::Mine);
            const NamedMutex mutex(root, u"mutex");
            EXPECT_EQ(openToOthers(root.path()), QStringList());

            const QString taken = folder.filePath(u"out.html"_s);
            ASSERT_TRUE(replaceFile(taken, "x", Readers::Usual));
            EXPECT_EQ(fileThere(taken)[0] & 0777U, 0666U & ~mask) << "what is taken out";
            chmod(QFile::encodeName(taken).constData(), 0640);
            ASSERT_TRUE(replaceFile(taken, "y", Readers::Usual));
            EXPECT_EQ(fileThere(taken)[0] & 0777U, 0640U);
        }
    }
    umask(usual);
}

} // namespace
} // namespace tidebrook
