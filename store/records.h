#pragma once

#include <QString>
#include <QtGlobal>

namespace tidebrook {

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

/// A row of the article table, in the order of its columns, as a statement takes it: the texts are
/// escaped, or hold no quote.
struct ArticleRecord {
    QString channelName;
    QString guid;
    QString title;
    QString itemLink;
    QString description;
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
