#include "ctl/feed_choice.h"

#include "ctl/output.h"
#include "feed/formats/parse_feed.h"
#include "share/page_feeds.h"

namespace tidebrook {

namespace {

using namespace std::chrono_literals;

constexpr HttpLimits pageLimits{.connect = 5s, .requestObject = 10s, .bodyBytes = 4 * 1024 * 1024};

QString failChoice(const QString &message) {
    fail(message);
    return {};
}

QString choose(const QList<PageFeed> &feeds, const QString &page, std::optional<uint> number) {
    const qsizetype chosen = number.value_or(feeds.size() == 1 ? 1 : 0);
    if (chosen > 0 && chosen <= feeds.size())
        return feeds[chosen - 1].address;
    for (qsizetype i = 0; i < feeds.size(); ++i)
        printFields({QString::number(i + 1), feeds[i].title, feeds[i].address});
    return failChoice(QStringLiteral("%1 is a web page that names these feeds: 1 to %2 for --feed")
                          .arg(page, QString::number(feeds.size())));
}

} // namespace

QString feedAddress(CommandDevice &device, const QString &address, std::optional<uint> number) {
    if (number == 0U)
        return address;
    device.unlock();
    std::optional<QList<PageFeed>> feeds = feedsOfPage(address, pageLimits);
    if (!device.lock())
        return {};
    if (!feeds)
        return !number ? address
                       : failChoice(QStringLiteral("%1: no web page is there").arg(address));
    if (feeds->isEmpty())
        return failChoice(QStringLiteral("%1 is a web page that names no feed").arg(address));
    if (!readsOtherFormats(device.registry))
        feeds->removeIf([](const PageFeed &feed) { return !feed.isRss; });
    if (!feeds->isEmpty())
        return choose(*feeds, address, number);
    return failChoice(
        QStringLiteral("%1 is a web page that names feeds of other formats than RSS alone; "
                       "'tidebrookctl setting OtherFormats 1' has them read")
            .arg(address));
}

} // namespace tidebrook
