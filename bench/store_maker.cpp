#include "bench/store_maker.h"

#include "bench/floor.h"
#include "feed/pub_date.h"
#include "feed_server/generated_feed.h"
#include "store/category_list.h"
#include "store/feed_store.h"
#include "store/provisioning.h"
#include "update/auto_list.h"
#include "update/channel_file.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace tidebrook {

namespace {

// Away from those of the feeds that are refreshed: every article's guid is unique.
constexpr quint32 firstSeed = 100'000;

const QString todayItem = QStringLiteral("Bench");

QString channelName(int number) {
    return QStringLiteral("Voices of district %1").arg(number, 4, 10, QChar(u'0'));
}

QString categoryName(int number) { return QStringLiteral("Category %1").arg(number + 1); }

QString categoryOf(const StorePlan &plan, int channel) {
    return categoryName(channel % plan.categories);
}

void check(bool isDone, const QString &home) {
    if (!isDone)
        throw std::runtime_error("a store cannot be made at " + home.toStdString());
}

void makeCategories(Registry &registry, const StorePlan &plan) {
    CategoryListStore categories(registry);
    SettingsStore settings(registry);
    settings.setDword(programKey, u"CategoryNumber", 0);
    for (int i = 0; i < plan.categories; ++i)
        categories.AddCategory(categoryName(i));
}

bool insertChannels(FeedStore &store, const StorePlan &plan) {
    bool isDone = true;
    for (int i = 0; i < plan.filledChannels; ++i) {
        const QString link = QStringLiteral("http://feeds.example.org/%1/rss.xml").arg(i);
        isDone = isDone && store.InsertChannel({categoryOf(plan, i), channelName(i), link});
    }
    for (const QString &name : plan.emptyChannels) {
        isDone = isDone && store.InsertChannel({benchCategory.toString(), name,
                                                QStringLiteral("http://feeds.example.org/")});
    }
    for (const Feed &feed : plan.automaticFeeds)
        isDone = isDone && store.InsertChannel({benchCategory.toString(), feed.channel, feed.url});
    return isDone;
}

// Without the syncs that each channel that is added to the list costs.
void listAutomatic(const DeviceRoot &device, const Feeds &feeds) {
    QString lines;
    for (const Feed &feed : feeds)
        lines += channelLine({feed.url, feed.channel, benchCategory.toString()});
    QFile file(device.filePath(u"\\windows\\UpdateChannel.list"));
    const QByteArray bytes = encodeChannelFile(lines);
    const bool isWritten =
        file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
    const auto listed = autoUpdatedChannels(device);
    check(isWritten && listed && listed->size() == feeds.size(), device.path());
}

bool recount(FeedStore &store, const StorePlan &plan) {
    bool isDone = true;
    for (int i = 0; i < plan.filledChannels; ++i)
        isDone = isDone && store.RecountChannel(escapedChannelName(channelName(i)));
    return isDone;
}

/// Opens the store and makes one change of it.
void change(const QString &home, const std::function<bool(FeedStore &)> &work) {
    const DeviceRoot device(home);
    Registry registry(device);
    FeedStore store(device, registry, todayItem);
    check(store.Open(), home);
    bool isDone = false;
    const bool isStored = store.changeAtOnce([&](SqlCommand &) {
        isDone = work(store);
        return isDone;
    });
    check(isDone && isStored, home);
}

// The articles are stamped as of now, so that no refresh takes them for old ones.
void insertArticles(const QString &home, const StorePlan &plan) {
    FloorStore store(databaseOf(home).toStdString());
    const qint64 stamp = ingestionClock(0);
    store.begin();
    for (int i = 0; i < plan.filledChannels; ++i) {
        const QByteArray feed =
            generatedFeed(plan.articlesPerChannel, firstSeed + static_cast<quint32>(i));
        const FloorStore::Counts counts =
            store.insertFeed(feed.toStdString(), {channelName(i).toStdString(),
                                                  categoryOf(plan, i).toStdString(), stamp});
        check(counts.stored == plan.articlesPerChannel, home);
    }
    store.commit();
}

} // namespace

QString databaseOf(const QString &home) { return DeviceRoot(home).filePath(u"RSSVault.sdf"); }

void makeStore(const QString &home, const StorePlan &plan) {
    const DeviceRoot device(home);
    check(!device.isDevice() && provisionDevice(device, {}, todayItem), home);
    {
        Registry registry(device);
        makeCategories(registry, plan);
    }
    change(home, [&](FeedStore &store) { return insertChannels(store, plan); });
    if (!plan.automaticFeeds.isEmpty())
        listAutomatic(device, plan.automaticFeeds);
    insertArticles(home, plan);
    change(home, [&](FeedStore &store) { return recount(store, plan); });
}

void copyStore(const QString &from, const QString &to) {
    namespace fs = std::filesystem;
    fs::copy(from.toStdString(), to.toStdString(), fs::copy_options::recursive);
    const int folder = open(to.toLocal8Bit().constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool isSynced = folder >= 0 && syncfs(folder) == 0;
    if (folder >= 0)
        close(folder);
    check(isSynced, to);
}

void onCopy(const QString &store, const std::function<void(const QString &)> &work) {
    const QString copy = store + u"-copy";
    copyStore(store, copy);
    work(copy);
    QDir(copy).removeRecursively();
}

} // namespace tidebrook
