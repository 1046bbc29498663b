#include "ctl/commands.h"
#include "ctl/output.h"
#include "feed/feed_records.h"

namespace tidebrook {

namespace {

std::optional<SortMode> sortMode(const QString &order) {
    if (order.isEmpty() || order == u"date")
        return SortMode::Date;
    if (order == u"status")
        return SortMode::Status;
    if (order == u"unread")
        return SortMode::UnreadOnly;
    return std::nullopt;
}

QString shown(const QString &text) { return text.startsWith(missingText) ? QString() : text; }

} // namespace

QString listedTitle(CommandDevice &device, const QString &channel, const QString &title) {
    QList<ArticleRow> articles;
    if (!device.store.ListArticles(channel, SortMode::Date, articles))
        return title;
    QString found = title;
    for (const ArticleRow &article : std::as_const(articles)) {
        if (article.title == title)
            return title;
        if (printable(article.title) == title)
            found = article.title;
    }
    return found;
}

int failArticle(const Device &device, const QString &title) {
    return device.store.error() != 0
               ? failStore(device)
               : fail(QStringLiteral("there is no article \"%1\"").arg(title));
}

int runArticles(CommandDevice &device, const Arguments &arguments) {
    const QString channel = arguments.operands[0];
    const std::optional<SortMode> mode = sortMode(arguments.order);
    if (!mode)
        return failUsage(QStringLiteral("there is no order \"%1\"").arg(arguments.order));
    if (!device.hasChannel(channel))
        return ExitFailed;
    QList<ArticleRow> articles;
    if (!device.store.ListArticles(channel, *mode, articles))
        return failStore(device);
    for (const ArticleRow &article : std::as_const(articles))
        printFields({article.isRead ? QStringLiteral("r") : QStringLiteral("u"),
                     article.publicationDate, article.title});
    return ExitDone;
}

int runShow(CommandDevice &device, const Arguments &arguments) {
    const QString channel = arguments.operands[0];
    if (!device.hasChannel(channel))
        return ExitFailed;
    const QString title = listedTitle(device, channel, arguments.operands[1]);
    ArticleExtract detail;
    const bool isMarked = device.store.GetArticleDetail(channel, title, detail);
    // Every stored article has a link, be it only the mark of a missing one.
    if (detail.itemLink.isEmpty())
        return failArticle(device, title);
    printLine(detail.publicationDate);
    printLine(shown(detail.itemLink));
    printLine({});
    printText(shown(detail.description));
    device.store.PublishTotalUnread();
    return isMarked ? ExitDone : failStore(device);
}

namespace {

// All articles of a channel, or the one with that title.
int markArticles(CommandDevice &device, const QString &channel, bool isRead,
                 const std::optional<QString> &title) {
    bool isMarked = false;
    if (title) {
        ArticleExtract extract;
        if (!device.store.GetArticleExtract(channel, *title, extract))
            return failArticle(device, *title);
        isMarked = device.store.MarkArticle(channel, *title, isRead);
    } else {
        isMarked = isRead ? device.store.MarkChannelRead(channel)
                          : device.store.MarkChannelUnread(channel);
    }
    if (!isMarked)
        return failStore(device);
    device.store.PublishTotalUnread();
    return ExitDone;
}

} // namespace

int runMark(CommandDevice &device, const Arguments &arguments) {
    const QString channel = arguments.operands[0];
    const QString flag = arguments.operands[1];
    if (flag != u"read" && flag != u"unread")
        return failUsage(QStringLiteral("articles are marked \"read\" or \"unread\""));
    if (!device.hasChannel(channel))
        return ExitFailed;
    // An empty title marks no article, and not all of them.
    const std::optional<QString> title =
        arguments.operands.size() > 2
            ? std::optional(listedTitle(device, channel, arguments.operands[2]))
            : std::nullopt;
    return markArticles(device, channel, flag == u"read", title);
}

} // namespace tidebrook
