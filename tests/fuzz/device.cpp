// The files of a device that other programs write. The first byte says which: R the request, L the
// automatic list, S the seed file; any other stands before the registry's values.

#include "fuzz/fuzz.h"
#include "store/category_list.h"
#include "store/seeding.h"
#include "store/store_check.h"
#include "test_device/test_device.h"
#include "update/auto_list.h"
#include "update/auto_schedule.h"
#include "update/channel_file.h"
#include "update/request_file.h"
#include "update/round_news.h"
#include "update/update_settings.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace tidebrook {

using namespace Qt::StringLiterals;

static const RefreshJob kept{u"http://x/"_s, u"ch"_s, u"C"_s};

static TestDevice &device() {
    static TestDevice device;
    static const bool isOpen =
        device.store->Open() &&
        device.store->InsertChannel({kept.category, kept.channelName, kept.url});
    require(isOpen, "the device is there");
    return device;
}

static void write(QStringView file, const QByteArray &content) {
    require(writeFile(device().root.filePath(file), content), "a file can be written");
}

// What another program writes may have half characters.
static void checkFields(const QString &name, const QString &url, const QString &category) {
    require(name.size() <= channelNameCapacity && category.size() <= categoryCapacity &&
                url.size() <= linkCapacity,
            "a channel's texts have their capacities", name + category + url);
}

static void checkJob(const RefreshJob &job) {
    checkFields(job.channelName, job.url, job.category);
    const auto again = parseChannelLine(QStringView(channelLine(job)).chopped(1));
    require(again && channelLine(*again) == channelLine(job), "a line is read as it was written",
            channelLine(job));
}

static QStringList listedNames() {
    const auto channels = autoUpdatedChannels(device().root);
    require(channels.has_value(), "the list can be read");
    QStringList names;
    for (const RefreshJob &job : *channels) {
        checkJob(job);
        require(!names.contains(job.channelName), "a name is there once", job.channelName);
        names.append(job.channelName);
    }
    return names;
}

static void checkList() {
    const DeviceRoot &root = device().root;
    FeedStore &store = *device().store;
    listedNames();
    require(addAutoUpdated(root, store, {kept}).has_value() &&
                isAutoUpdated(root, kept.channelName) == true &&
                listedNames().contains(kept.channelName),
            "a channel that is added is on the list");
    require(pruneAutoUpdated(root, store) && countAutoUpdated(root, store) == 1,
            "no other channel is there");
    require(setAutoUpdate(root, store, kept, false) &&
                isAutoUpdated(root, kept.channelName) == false &&
                !listedNames().contains(kept.channelName),
            "a channel that is taken out is not on the list");
}

// Values of any type, and types that do not match their values.
static void fillRegistry(FuzzedDataProvider &input) {
    static const auto file = SqliteDatabase::open(device().root.registryPath(), {});
    static const QStringList names =
        u"CategoryNumber UpdateMode UpdateInterval UpdateTime UpdateOffset ACTOPTION NoRoaming "
        "OtherFormats LastAutoUpdate Status Cradled Enabled TodayTimer NewArticles NewChannels C"_s
            .split(u' ');
    static const QStringView keys[]{programKey, categoriesKey, hardwareStateKey, phoneStateKey,
                                    testTodayKey};
    const auto text = [&](size_t size) {
        return QByteArray::fromStdString(input.ConsumeRandomLengthString(size));
    };
    SqliteTransaction change(*file);
    file->run("DELETE FROM registry_values");
    while (input.remaining_bytes() > 0) {
        const QByteArray key = input.PickValueInArray(keys).toUtf8();
        const auto index = input.ConsumeIntegralInRange<qsizetype>(0, names.size());
        const QByteArray name = index < names.size() ? names[index].toUtf8() : text(90);
        const auto type = input.ConsumeIntegralInRange<qint64>(-1, 5);
        const SqliteValue value = input.ConsumeBool() ? SqliteValue(input.ConsumeIntegral<qint64>())
                                                      : SqliteValue(text(30));
        file->run("INSERT OR REPLACE INTO registry_values (path, name, type, data) "
                  "VALUES (?, ?, ?, ?)",
                  {key, name, type, value});
    }
    require(change.commit(), "the registry can be filled");
}

static void checkCategories(Registry &registry) {
    CategoryListStore list(registry);
    for (const QString &name : list.listedCategories().value_or(QStringList()))
        requireText(name, categoryCapacity, "a category");
    require(!list.ensureListed(u"New"_s) || list.listedCategories()->contains(u"New"_s),
            "a category that is added is listed");
    require(!list.DeleteCategory(u"New"_s) || !list.listedCategories()->contains(u"New"_s),
            "a category that is deleted is not listed");
}

static void checkSchedule(Registry &registry) {
    AutoSchedule schedule(registry);
    for (const int hours : {0, 1, 48}) {
        const std::chrono::hours uptime(hours);
        const auto now = QDateTime::fromSecsSinceEpoch(1'800'000'000, Qt::UTC).addDuration(uptime);
        if (schedule.dueRound(now, uptime))
            schedule.endRound(now);
        require(!schedule.dueRound(now, uptime), "a round comes once");
        require(!schedule.next() || *schedule.next() > now, "the next round is still to come");
    }
}

static void checkRegistry(Registry &registry) {
    SettingsStore settings(registry);
    checkStore(device().root, registry);
    readAutoUpdatePage(settings);
    readTodayPage(settings, testTodayKey);
    readRoundNews(settings, testTodayKey);
    checkSchedule(registry);
    checkCategories(registry);
}

void fuzz(const QByteArray &input) {
    if (input.startsWith('R')) {
        write(u"\\windows\\UpdateChannel.single", input.sliced(1));
        if (const auto job = RequestFile(device().root).job())
            checkJob(*job);
    } else if (input.startsWith('L')) {
        write(u"\\windows\\UpdateChannel.list", input.sliced(1));
        checkList();
    } else if (input.startsWith('S')) {
        write(u"\\windows\\RSSChannels.txt", input.sliced(1));
        const auto channels = readSeedChannels(device().root);
        for (const ChannelRecord &channel : channels.value_or(QList<ChannelRecord>()))
            checkFields(channel.channelName, channel.channelLink, channel.category);
    } else {
        FuzzedDataProvider values(reinterpret_cast<const uint8_t *>(input.data()),
                                  static_cast<size_t>(input.size()));
        fillRegistry(values);
        checkRegistry(*device().registry);
    }
}

} // namespace tidebrook
