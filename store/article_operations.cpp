#include "store/feed_store.h"

namespace tidebrook {

namespace {

// Dates have no time of day. Within one refresh, which has one stamp, a feed's newest comes first.
constexpr char newestFirst[] = "TIMESTAMP DESC, rowid";

QString listStatement(SortMode mode) {
    switch (mode) {
    case SortMode::Status:
        return QStringLiteral("SELECT TIMESTAMP, TITLE, PUBDATE, READ_UNREAD FROM RSSRecord WHERE "
                              "CHANNEL_NAME = '%1' ORDER BY READ_UNREAD ASC, PUBDATE DESC");
    case SortMode::UnreadOnly:
        return QStringLiteral("SELECT TIMESTAMP, TITLE, PUBDATE, READ_UNREAD FROM RSSRecord WHERE "
                              "CHANNEL_NAME = '%1' and READ_UNREAD = 0 ORDER BY PUBDATE DESC");
    case SortMode::Date:
        break;
    }
    return QStringLiteral("SELECT TIMESTAMP, TITLE, PUBDATE, READ_UNREAD FROM RSSRecord WHERE "
                          "CHANNEL_NAME = '%1' ORDER BY PUBDATE DESC");
}

} // namespace

bool FeedStore::ListArticles(const QString &channel, SortMode mode) {
    const auto guard = lock();
    beginList(sizeof(ArticleRow));
    return query(listStatement(mode).arg(escapedChannelName(channel)), [this](SqlCommand &command) {
        command.setOrderOfEquals(newestFirst);
        return ReadArticleRows(command);
    });
}

bool FeedStore::GetArticleDetail(const QString &channel, const QString &title,
                                 ArticleDetail &detail) {
    const auto guard = lock();
    detail = {};
    const QString name = escapedChannelName(channel);
    const QString titleText = escapedTitle(title);
    // Read before the change is begun: an article can be read while another process writes.
    bool isFound = false;
    const bool isRead = selectArticle(name, titleText, detail, isFound);
    return changeAndReopen(
        [&] { return isRead && MarkArticleRead(name, titleText) && RecountChannel(name); });
}

bool FeedStore::GetArticleExtract(const QString &channel, const QString &title,
                                  ArticleExtract &extract) {
    const auto guard = lock();
    extract = {};
    bool isFound = false;
    return selectArticle(escapedChannelName(channel), escapedTitle(title), extract, isFound) &&
           isFound;
}

bool FeedStore::selectArticle(const QString &escapedChannel, const QString &escapedTitle,
                              ArticleDetail &detail, bool &isFound) {
    return query(QStringLiteral("SELECT PUBDATE, DESCRIPTION, ITEM_LINK FROM RSSRecord WHERE "
                                "CHANNEL_NAME = '%1' and TITLE = '%2'")
                     .arg(escapedChannel, escapedTitle),
                 [&](SqlCommand &command) { return ReadArticleDetail(command, detail, isFound); });
}

bool FeedStore::MarkArticleRead(const QString &escapedChannel, const QString &escapedTitle) {
    const auto guard = lock();
    return runStatement(QStringLiteral("UPDATE RSSRecord SET READ_UNREAD = 1 WHERE "
                                       "CHANNEL_NAME='%1' and TITLE='%2'")
                            .arg(escapedChannel, escapedTitle));
}

bool FeedStore::MarkChannelRead(const QString &channel) { return markChannel(channel, 1); }

bool FeedStore::MarkChannelUnread(const QString &channel) { return markChannel(channel, 0); }

bool FeedStore::markChannel(const QString &channel, int readFlag) {
    const auto guard = lock();
    if (!session_)
        return recordFailure(false);
    SqliteTransaction transaction(*session_);
    const QString name = escapedChannelName(channel);
    return recordFailure(
        transaction.isOpen() &&
        runStatement(QStringLiteral("UPDATE RSSRecord SET READ_UNREAD = %1 WHERE CHANNEL_NAME='%2'")
                         .arg(QString::number(readFlag), name)) &&
        RecountChannel(name) && transaction.commit());
}

bool FeedStore::CountReadFlags(const QString &category, const QString &channel,
                               ReadFlagCounts &counts) {
    const auto guard = lock();
    return query(
        QStringLiteral(
            "SELECT READ_UNREAD FROM RSSRecord WHERE CATEGORY='%1' and CHANNEL_NAME = '%2'")
            .arg(escapedCategory(category), escapedChannelName(channel)),
        [&](SqlCommand &command) { return CountReadFlags(command, counts); });
}

} // namespace tidebrook
