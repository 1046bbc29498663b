#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

namespace tidebrook {

/// The orders of an article list.
enum class SortMode {
    Date = 12,       ///< newest first
    Status = 13,     ///< unread first, each group newest first
    UnreadOnly = 14, ///< only unread ones, newest first
};

/// A channel that is to be inserted. Longer texts are cut to the capacities of the columns.
struct ChannelRecord {
    QString category;
    QString channelName;
    QString channelLink;
};

/// A row of a category's list of channels.
struct ChannelRow {
    QString name;
    int unread = 0;
    int total = 0;
};

/// A channel with all that is listed of it.
struct ListedChannel {
    QString name;
    QString category;
    QString link;
    int unread = 0;
    int total = 0;
};

/// A row of the article table, in the order of its columns. The names of the channel and of the
/// category are escaped, the date holds no quote, and the other texts stand as they are, in UTF-8.
struct ArticleRecord {
    QString channelName;
    QByteArray guid;
    QByteArray title;
    QByteArray itemLink;
    QByteArray description;
    QString publicationDate; // YYYY-MM-DD, or empty
    bool isRead = false;
    quint32 timestamp = 0; // seconds on the ingestion clock
    QString category;
};

/// A row of a channel's list of articles.
struct ArticleRow {
    QString title;
    QString publicationDate; // YYYY-MM-DD, or empty
    bool isRead = false;
};

/// An article with what tells it apart from every other. The texts have no blanks at their ends.
struct ListedArticle {
    QString guid; ///< its identity in all channels
    QString title;
    QString channel;
    QString category;        // null where the channel is missing
    QString publicationDate; // YYYY-MM-DD, or empty
    QString itemLink;
    QString description; // markup as the feed sent it; null where it was not asked for
    bool isRead = false;
    qint64 number = 0; ///< its place in the channel's list by date, from 1; 0 where it is not known
};

/// Which articles are listed, and what of them.
struct ArticleChoice {
    QString channel;  // null: of every channel that exists
    QString category; // of these channels; null: of every one
    SortMode order = SortMode::Date;
    bool withDescription = false;
};

/// What is kept of an article besides its title.
struct ArticleExtract {
    QString publicationDate; // YYYY-MM-DD, or empty
    QString description;     // markup as the feed sent it
    QString itemLink;
};

/// What a channel lacks of its feed, because an article is stored once for all channels.
struct SharedArticles {
    int count = 0;
    QString owner; ///< a channel that has such an article; null for none
};

struct ReadFlagCounts {
    int unread = 0;
    int total = 0;
};

} // namespace tidebrook
