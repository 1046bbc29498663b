#include "ctl/article_operand.h"
#include "ctl/commands.h"
#include "ctl/output.h"
#include "ctl/pager.h"
#include "ctl/table.h"
#include "ctl/wrapping.h"
#include "feed/feed_records.h"

#include <QJsonArray>

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

QString supplied(const QString &text) { return isMissing(text) ? QString() : text; }

} // namespace

int runArticles(CommandDevice &device, const Arguments &arguments) {
    const QString channel = arguments.operands[0];
    const std::optional<SortMode> mode = sortMode(arguments.order);
    if (!mode)
        return failUsage(QStringLiteral("there is no order \"%1\"").arg(arguments.order));
    if (!device.hasChannel(channel))
        return ExitFailed;
    Table table(arguments, {QStringLiteral("state"), QStringLiteral("date"),
                            QStringLiteral("title"), QStringLiteral("number")});
    const auto add = [&](const ListedArticle &article) {
        table.add({readLetter(article), article.publicationDate, article.title,
                   QString::number(article.number)},
                  articleObject(article));
        return true;
    };
    const ArticleChoice choice{.channel = channel, .category = {}, .order = *mode};
    return device.store.VisitArticles(choice, add) ? table.end() : failStore(device);
}

namespace {

// The heading stands above the text, and the addresses of the links below it.
QString page(const ListedArticle &article, const ReadableText &text, int columns) {
    const std::pair<QString, QString> heading[]{
        {QStringLiteral("Title:   "), article.title},
        {QStringLiteral("Date:    "), article.publicationDate},
        {QStringLiteral("Channel: "), article.channel},
        {QStringLiteral("Link:    "), supplied(article.itemLink)}};
    QString page;
    for (const auto &[name, value] : heading) {
        if (!value.isEmpty())
            page += wrapped({name, QString(name.size(), u' '), printable(value)}, columns) + u'\n';
    }
    if (!text.lines.isEmpty())
        page += u'\n';
    for (const ReadableLine &line : text.lines)
        page += wrapped(line, columns) + u'\n';
    if (!text.links.isEmpty())
        page += u'\n';
    for (qsizetype i = 0; i < text.links.size(); ++i)
        page += QStringLiteral("[%1] %2\n").arg(QString::number(i + 1), printable(text.links[i]));
    return page.chopped(1); // which is printed with a line end
}

QJsonObject wholeObject(const ListedArticle &article, const ReadableText &text) {
    QJsonObject object = articleObject(article);
    object.insert(QStringLiteral("html"), jsonText(article.description));
    object.insert(QStringLiteral("text"), jsonText(text.joined()));
    object.insert(QStringLiteral("links"), QJsonArray::fromStringList(text.links));
    return object;
}

int showLink(const ListedArticle &article) {
    const QString link = supplied(article.itemLink);
    if (link.isEmpty())
        return fail(QStringLiteral("\"%1\" has no link").arg(article.title));
    printLine(link);
    return ExitDone;
}

int markArticle(CommandDevice &device, const ListedArticle &article, bool isRead) {
    if (!device.store.MarkArticle(article.channel, article.guid, isRead))
        return failStore(device);
    device.store.PublishTotalUnread();
    return ExitDone;
}

} // namespace

int runShow(CommandDevice &device, const Arguments &arguments) {
    if (arguments.options.size() > 1)
        return failUsage(QStringLiteral("show takes one of --html, --link, --json"));
    auto article = wantedArticle(device, arguments.operands[0], arguments.operands[1]);
    if (!article)
        return ExitFailed;
    if (arguments.has(u"link"))
        return showLink(*article);
    if (!device.store.ReadDescription(article->guid, article->description))
        return failStore(device);
    const QString html = supplied(article->description);
    if (arguments.has(u"json")) {
        if (!isQuiet())
            printDocument(jsonLine(wholeObject(*article, readableText(html))) + '\n');
        return ExitDone;
    }
    // Before the pager, which the user may leave open.
    const int code = article->isRead ? ExitDone : markArticle(device, *article, true);
    if (arguments.has(u"html"))
        printPaged(html);
    else
        printPaged(page(*article, readableText(html), outputColumns()));
    return code;
}

int runMark(CommandDevice &device, const Arguments &arguments) {
    const QString channel = arguments.operands[0];
    const QString flag = arguments.operands[1];
    if (flag != u"read" && flag != u"unread")
        return failUsage(QStringLiteral("articles are marked \"read\" or \"unread\""));
    const bool isRead = flag == u"read";
    if (arguments.operands.size() > 2) {
        const auto article = wantedArticle(device, channel, arguments.operands[2]);
        return article ? markArticle(device, *article, isRead) : ExitFailed;
    }
    if (!device.hasChannel(channel))
        return ExitFailed;
    if (!(isRead ? device.store.MarkChannelRead(channel) : device.store.MarkChannelUnread(channel)))
        return failStore(device);
    device.store.PublishTotalUnread();
    return ExitDone;
}

} // namespace tidebrook
