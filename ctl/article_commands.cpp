#include "ctl/commands.h"
#include "ctl/output.h"

#include <QHash>

namespace tidebrook {

namespace {

constexpr QStringView missingText = u"DEFAULT";

std::optional<SortMode> sortMode(const QString &order) {
    if (order.isEmpty() || order == u"date")
        return SortMode::Date;
    if (order == u"status")
        return SortMode::Status;
    if (order == u"unread")
        return SortMode::UnreadOnly;
    return std::nullopt;
}

} // namespace

int runArticles(Device &device, const Arguments &arguments) {
    const QString channel = arguments.operands[0];
    const std::optional<SortMode> mode = sortMode(arguments.order);
    if (!mode)
        return failUsage(QStringLiteral("there is no order \"%1\"").arg(arguments.order));
    if (!device.findChannel(channel))
        return failUnknownChannel(channel);
    const auto guard = device.store.lock();
    if (!device.store.ListArticles(channel, *mode))
        return failStore(device);
    for (const ArticleRow &article : device.store.takeArticleRows())
        printFields({article.isRead() ? QStringLiteral("r") : QStringLiteral("u"),
                     article.publicationDateText(), article.titleText()});
    return ExitDone;
}

int runShow(Device &device, const Arguments &arguments) {
    const QString channel = arguments.operands[0];
    const QString title = arguments.operands[1];
    if (!device.findChannel(channel))
        return failUnknownChannel(channel);
    ArticleDetail detail;
    if (!device.store.GetArticleDetail(channel, title, detail))
        return failStore(device);
    // Every stored article has a link, be it only the mark of a missing one.
    if (detail.itemLink.isEmpty())
        return fail(QStringLiteral("there is no article \"%1\"").arg(title));
    printLine(detail.publicationDate);
    printLine(detail.itemLink);
    printLine({});
    printText(detail.description.startsWith(missingText) ? QString() : detail.description);
    device.store.PublishTotalUnread();
    return ExitDone;
}

int runMark(Device &device, const Arguments &arguments) {
    const QString channel = arguments.operands[0];
    const QString flag = arguments.operands[1];
    if (flag != u"read" && flag != u"unread")
        return failUsage(QStringLiteral("a channel is marked \"read\" or \"unread\""));
    if (!device.findChannel(channel))
        return failUnknownChannel(channel);
    const bool isMarked = flag == u"read" ? device.store.MarkChannelRead(channel)
                                          : device.store.MarkChannelUnread(channel);
    if (!isMarked)
        return failStore(device);
    device.store.PublishTotalUnread();
    return ExitDone;
}

} // namespace tidebrook
