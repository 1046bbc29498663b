#include "store/feed_store.h"

namespace tidebrook {

namespace {

// No stored guid has a quote, and no statement takes another.
bool isStorableGuid(const QString &guid) { return !guid.contains(u'\''); }

SqlText &addOrder(SqlText &statement, SortMode mode) {
    switch (mode) {
    case SortMode::Status:
        return statement.add(" ORDER BY READ_UNREAD ASC, PUBDATE DESC");
    case SortMode::UnreadOnly:
        return statement.add(" and READ_UNREAD = 0 ORDER BY PUBDATE DESC");
    case SortMode::Date:
        break;
    }
    return statement.add(" ORDER BY PUBDATE DESC");
}

// Rows of ids and numbers alone: what else an article has would take long to sort.
SqlText chosenStatement(const ArticleChoice &choice) {
    SqlText statement("SELECT ID, NUMBER FROM (SELECT a.rowid AS ID, PUBDATE, TIMESTAMP, "
                      "READ_UNREAD, ");
    statement.add(choice.channel.isNull() ? "c.CATEGORY" : "a.CATEGORY")
        .add(" AS PLACE, row_number() OVER (PARTITION BY a.CHANNEL_NAME ORDER BY PUBDATE DESC, "
             "TIMESTAMP DESC, a.rowid) AS NUMBER FROM RSSRecord a ");
    if (choice.channel.isNull())
        statement.add("JOIN RSSCHRecord c ON c.CHANNEL_NAME = a.CHANNEL_NAME)");
    else
        statement.add("WHERE a.CHANNEL_NAME = '%s')", escapedChannelName(choice.channel));
    statement.add(" WHERE NUMBER > 0"); // every row's is: the conditions behind begin with "and"
    if (!choice.category.isNull())
        statement.add(" and PLACE = '%s'", escapedCategory(choice.category));
    return addOrder(statement, choice.order).add(", TIMESTAMP DESC, ID");
}

} // namespace

bool FeedStore::ListArticles(const QString &channel, SortMode mode, QList<ArticleRow> &articles) {
    const auto guard = lock();
    SqlText statement("SELECT TIMESTAMP, TITLE, PUBDATE, READ_UNREAD FROM RSSRecord WHERE "
                      "CHANNEL_NAME = '%s'",
                      escapedChannelName(channel));
    // Dates have no time of day. Within one refresh, which has one stamp, a feed's newest comes
    // first.
    return ReadArticleRows(addOrder(statement, mode).add(", TIMESTAMP DESC, rowid"), articles);
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
    return readRows(chosenStatement(choice), take) && isRead;
}

bool FeedStore::ReadDescription(const QString &guid, QString &description) {
    const auto guard = lock();
    description.clear();
    return !isStorableGuid(guid) ||
           ReadText({"SELECT DESCRIPTION FROM RSSRecord WHERE GUID='%s'", guid}, description);
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
        {"SELECT PUBDATE, DESCRIPTION, ITEM_LINK FROM RSSRecord WHERE CHANNEL_NAME = '%s' and "
         "TITLE = '%s'",
         escapedChannel, escapedTitle},
        article);
}

bool FeedStore::MarkArticleRead(const QString &escapedChannel, const QString &escapedTitle) {
    const auto guard = lock();
    return ExecuteNonQuery({"UPDATE RSSRecord SET READ_UNREAD = 1 WHERE CHANNEL_NAME='%s' and "
                            "TITLE='%s'",
                            escapedChannel, escapedTitle});
}

bool FeedStore::MarkArticle(const QString &channel, const QString &guid, bool isRead) {
    if (!isStorableGuid(guid))
        return true;
    const QString name = escapedChannelName(channel);
    return changeWhole([&] {
        return ExecuteNonQuery({"UPDATE RSSRecord SET READ_UNREAD = %d WHERE CHANNEL_NAME='%s' "
                                "and GUID='%s'",
                                isRead, name, guid}) &&
               RecountChannel(name);
    });
}

bool FeedStore::MarkChannelRead(const QString &channel) { return markChannel(channel, 1); }

bool FeedStore::MarkChannelUnread(const QString &channel) { return markChannel(channel, 0); }

bool FeedStore::markChannel(const QString &channel, int readFlag) {
    const QString name = escapedChannelName(channel);
    return changeWhole([&] {
        return ExecuteNonQuery({"UPDATE RSSRecord SET READ_UNREAD = %d WHERE CHANNEL_NAME='%s'",
                                readFlag, name}) &&
               RecountChannel(name);
    });
}

bool FeedStore::CountReadFlags(const QString &category, const QString &channel,
                               ReadFlagCounts &counts) {
    const auto guard = lock();
    return CountReadFlags(
        {"SELECT READ_UNREAD FROM RSSRecord WHERE CATEGORY='%s' and CHANNEL_NAME = '%s'",
         escapedCategory(category), escapedChannelName(channel)},
        counts);
}

} // namespace tidebrook
