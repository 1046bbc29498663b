#include "store/feed_store.h"

namespace tidebrook {

namespace {

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
    return setReadFlag(escapedChannel, escapedTitle, true);
}

bool FeedStore::setReadFlag(const QString &escapedChannel, const QString &escapedTitle,
                            bool isRead) {
    return ExecuteNonQuery(QStringLiteral("UPDATE RSSRecord SET READ_UNREAD = %1 WHERE "
                                          "CHANNEL_NAME='%2' and TITLE='%3'")
                               .arg(QString::number(isRead), escapedChannel, escapedTitle));
}

bool FeedStore::MarkArticle(const QString &channel, const QString &title, bool isRead) {
    const QString name = escapedChannelName(channel);
    return changeWhole(
        [&] { return setReadFlag(name, escapedTitle(title), isRead) && RecountChannel(name); });
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
