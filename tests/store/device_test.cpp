#include "platform/replace_file.h"
#include "store/provisioning.h"
#include "store/seeding.h"
#include "store/store_check.h"
#include "store/update_state.h"
#include "support/forked_process.h"
#include "support/full_disk.h"
#include "support/obstacle.h"
#include "support/test_device.h"

#include <QDir>
#include <QDirIterator>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

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
    constexpr int largest = 1000; // KiB
    Outcome outcome = StartedWithRoom;
    int kib = 4;
    for (; kib < largest && outcome == StartedWithRoom; kib += 4) {
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

} // namespace
} // namespace tidebrook
