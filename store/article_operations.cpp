#include "store/feed_store.h"

namespace tidebrook {

namespace {

// No stored guid has a quote, and another's would end the literal.
bool isStorableGuid(const QString &guid) { return !guid.contains(u'\''); }

QStringView orderOf(SortMode mode) {
    switch (mode) {
    case SortMode::Status:
        return u" ORDER BY READ_UNREAD ASC, PUBDATE DESC";
    case SortMode::UnreadOnly:
        return u" and READ_UNREAD = 0 ORDER BY PUBDATE DESC";
    case SortMode::Date:
        break;
    }
    return u" ORDER BY PUBDATE DESC";
}

// Rows of ids and numbers alone: what else an article has would take long to sort.
QString chosenStatement(const ArticleChoice &choice) {
    const QString numbered =
        QStringLiteral("SELECT ID, NUMBER FROM (SELECT RSSRecord.rowid AS ID, PUBDATE, TIMESTAMP, "
                       "READ_UNREAD, %1 AS PLACE, row_number() OVER (PARTITION BY "
                       "RSSRecord.CHANNEL_NAME ORDER BY PUBDATE DESC, TIMESTAMP DESC, "
                       "RSSRecord.rowid) AS NUMBER FROM RSSRecord ");
    QString statement;
    if (choice.channel.isNull())
        statement = numbered.arg(u"RSSCHRecord.CATEGORY") +
                    QStringLiteral("JOIN RSSCHRecord ON RSSCHRecord.CHANNEL_NAME = "
                                   "RSSRecord.CHANNEL_NAME)");
    else
        statement =
            numbered.arg(u"CATEGORY") +
            QStringLiteral("WHERE CHANNEL_NAME = '%1')").arg(escapedChannelName(choice.channel));
    statement += QStringLiteral(" WHERE NUMBER > 0");
    if (!choice.category.isNull())
        statement += QStringLiteral(" and PLACE = '%1'").arg(escapedCategory(choice.category));
    return statement + orderOf(choice.order);
}

} // namespace

bool FeedStore::ListArticles(const QString &channel, SortMode mode, QList<ArticleRow> &articles) {
    const auto guard = lock();
    return ReadArticleRows(
        QStringLiteral("SELECT TIMESTAMP, TITLE, PUBDATE, READ_UNREAD FROM RSSRecord WHERE "
                       "CHANNEL_NAME = '%1'")
                .arg(escapedChannelName(channel)) +
            orderOf(mode),
        articles);
}

bool FeedStore::VisitArticles(const ArticleChoice &choice,
                              const std::function<bool(const ListedArticle &)> &visit) {
    const auto guard = lock();
    bool isRead = true;
    const auto take = [&](const SqliteStatement &row) {
        ListedArticle article;
        isRead = ReadListedArticle(row.integer(0), choice.withDescription, article);
        article.number = row.integer(1);
        return isRead && visit(article);
    };
    return readRows(chosenStatement(choice), take, "TIMESTAMP DESC, ID") && isRead;
}

bool FeedStore::ReadDescription(const QString &guid, QString &description) {
    const auto guard = lock();
    description.clear();
    return !isStorableGuid(guid) ||
           ReadText(QStringLiteral("SELECT DESCRIPTION FROM RSSRecord WHERE GUID='%1'").arg(guid),
                    description);
}

bool FeedStore::GetArticleDetail(const QString &channel, const QString &title,
                                 ArticleExtract &detail) {
    const auto guard = lock();
    const QString name = escapedChannelName(channel);
    const QString titleText = escapedTitle(title);
    // Read before the change is begun: an article can be read while another process writes.
    std::optional<ArticleExtract> article;
    const bool isRead = selectArticle(name, titleText, article);
    detail = article.value_or(ArticleExtract());
    return changeAndReopen(
        [&] { return isRead && MarkArticleRead(name, titleText) && RecountChannel(name); });
}

bool FeedStore::GetArticleExtract(const QString &channel, const QString &title,
                                  ArticleExtract &extract) {
    const auto guard = lock();
    std::optional<ArticleExtract> article;
    const bool isRead = selectArticle(escapedChannelName(channel), escapedTitle(title), article);
    extract = article.value_or(ArticleExtract());
    return isRead && article;
}

bool FeedStore::selectArticle(const QString &escapedChannel, const QString &escapedTitle,
                              std::optional<ArticleExtract> &article) {
    return ReadArticleDetail(
        QStringLiteral("SELECT PUBDATE, DESCRIPTION, ITEM_LINK FROM RSSRecord WHERE "
                       "CHANNEL_NAME = '%1' and TITLE = '%2'")
            .arg(escapedChannel, escapedTitle),
        article);
}

bool FeedStore::MarkArticleRead(const QString &escapedChannel, const QString &escapedTitle) {
    const auto guard = lock();
    return ExecuteNonQuery(QStringLiteral("UPDATE RSSRecord SET READ_UNREAD = 1 WHERE "
                                          "CHANNEL_NAME='%1' and TITLE='%2'")
                               .arg(escapedChannel, escapedTitle));
}

bool FeedStore::MarkArticle(const QString &channel, const QString &guid, bool isRead) {
    if (!isStorableGuid(guid))
        return true;
    const QString name = escapedChannelName(channel);
    return changeWhole([&] {
        return ExecuteNonQuery(QStringLiteral("UPDATE RSSRecord SET READ_UNREAD = %1 WHERE "
                                              "CHANNEL_NAME='%2' and GUID='%3'")
                                   .arg(QString::number(isRead), name, guid)) &&
               RecountChannel(name);
    });
}

bool FeedStore::MarkChannelRead(const QString &channel) { return markChannel(channel, 1); }

bool FeedStore::MarkChannelUnread(const QString &channel) { return markChannel(channel, 0); }

bool FeedStore::markChannel(const QString &channel, int readFlag) {
    const QString name = escapedChannelName(channel);
    return changeWhole([&] {
        return ExecuteNonQuery(
                   QStringLiteral("UPDATE RSSRecord SET READ_UNREAD = %1 WHERE CHANNEL_NAME='%2'")
                       .arg(QString::number(readFlag), name)) &&
               RecountChannel(name);
    });
}

bool FeedStore::CountReadFlags(const QString &category, const QString &channel,
                               ReadFlagCounts &counts) {
    const auto guard = lock();
    return CountReadFlags(
        QStringLiteral(
            "SELECT READ_UNREAD FROM RSSRecord WHERE CATEGORY='%1' and CHANNEL_NAME = '%2'")
            .arg(escapedCategory(category), escapedChannelName(channel)),
        counts);
}

} // namespace tidebrook
