#include "bench/store_maker.h"

#include "bench/bench.h"
#include "bench/floor.h"
#include "feed/pub_date.h"
#include "feed_server/generated_feed.h"
#include "platform/base/descriptor.h"
#include "platform/base/replace_file.h"
#include "store/provisioning.h"
#include "store/seeding.h"
#include "test_device/test_device.h"
#include "update/channel_file.h"

#include <QCryptographicHash>
#include <QDir>

#include <fcntl.h>

#include <filesystem>

namespace tidebrook {

using namespace Qt::StringLiterals;

namespace {

// Away from those of the feeds that are refreshed: every article's guid is unique.
constexpr quint32 firstSeed = 100'000;

RefreshJob filledChannel(const StorePlan &plan, int number) {
    return {u"http://feeds.example.org/%1/rss.xml"_s.arg(number),
            u"Voices of district %1"_s.arg(number, 4, 10, QChar(u'0')),
            u"Category %1"_s.arg(number % plan.categories + 1)};
}

// The articles are stamped as of now, so that no refresh takes them for old ones.
void insertArticles(const QString &home, const StorePlan &plan) {
    FloorStore store(home.toStdString());
    store.begin();
    for (int i = 0; i < plan.filledChannels; ++i) {
        const RefreshJob channel = filledChannel(plan, i);
        const QByteArray feed =
            generatedFeed(plan.articlesPerChannel, firstSeed + static_cast<quint32>(i));
        const FloorStore::Counts counts = store.insertFeed(
            feed.toStdString(),
            {channel.channelName.toStdString(), channel.category.toStdString(), ingestionClock(0)});
        require(counts.stored == plan.articlesPerChannel, u"a store with all articles"_s);
    }
    store.commit();
}

} // namespace

RefreshJob serveFeed(FeedServer &server, int number, int items, bool haveValidators, int first) {
    const QString path = u"/%1"_s.arg(number);
    const QByteArray feed = generatedFeed(items, static_cast<quint32>(number), first);
    const QByteArray hash = QCryptographicHash::hash(feed, QCryptographicHash::Sha1).toHex();
    server.serveWithValidators(path, feed, haveValidators ? '"' + hash + '"' : QByteArray());
    return {server.url(path), u"Feed %1"_s.arg(number), u"Bench"_s};
}

QList<RefreshJob> serveFeeds(FeedServer &server, int count, int items, bool haveValidators) {
    QList<RefreshJob> feeds;
    for (int i = 1; i <= count; ++i)
        feeds.append(serveFeed(server, i, items, haveValidators));
    return feeds;
}

void makeStore(const QString &home, const StorePlan &plan) {
    QString feeds;
    for (const RefreshJob &feed : plan.feeds)
        feeds += channelLine(feed);
    QString seed;
    for (int i = 0; i < plan.filledChannels; ++i)
        seed += channelLine(filledChannel(plan, i));
    const DeviceRoot device(home);
    const QString todayItem = testTodayKey.toString();
    require(provisionDevice(device, encodeChannelFile(seed + feeds), todayItem), home);
    Registry registry(device);
    SettingsStore(registry).setDword(programKey, u"CategoryNumber", 0);
    FeedStore store(device, registry, todayItem);
    require(seedCategories(device, registry) && store.Open(), home);
    insertArticles(home, plan);
    const bool isCounted = store.changeAtOnce([&](SqlCommand &) {
        for (int i = 0; i < plan.filledChannels; ++i)
            store.RecountChannel(filledChannel(plan, i).channelName);
    });
    const QString list = device.filePath(u"\\windows\\UpdateChannel.list");
    require(isCounted && store.PublishTotalUnread(), home);
    require(!plan.areAutomatic || replaceFile(list, encodeChannelFile(feeds)), home);
}

StoreCopy::StoreCopy(const QString &store) : home(store + u"-copy"_s) {
    namespace fs = std::filesystem;
    fs::copy(store.toStdString(), home.toStdString(), fs::copy_options::recursive);
    const Descriptor folder(open(qPrintable(home), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    require(folder.isOpen() && syncfs(folder.number()) == 0, home);
}

StoreCopy::~StoreCopy() { QDir(home).removeRecursively(); }

} // namespace tidebrook
