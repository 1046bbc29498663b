#pragma once

#include "feed/feed_records.h"
#include "platform/sql/sql.h"
#include "store/records.h"

#include <QSet>
#include <QString>

namespace tidebrook {

/// Stores the items of one channel as articles, and deletes its old articles, within a change that
/// the caller has begun. Not thread-safe.
class ArticleIngestion {
public:
    /// `category` has been through EscapeSql.
    ArticleIngestion(SqlCommand &command, const QString &channelName, const QString &category);

    /// The oldest stamp that is not pruned at this moment.
    static qint64 oldestKept();

    /// Deletes the channel's articles whose stamp is older than seven days of the ingestion clock.
    /// Items are stamped two days back, so that an article stays for five.
    bool pruneChannel();

    /// Stores an item as an unread article. One whose guid is stored already, in any channel, or
    /// whose title this channel has, is skipped with success: the stored article keeps its read
    /// flag and its age. False when the item has neither guid nor link, or a quote in its guid,
    /// link or date, or when the database failed.
    bool insertItem(ItemRecord item);

    /// How many articles were stored.
    int storedCount() const { return storedCount_; }

    /// Those of the first 1,000 items that were skipped which other channels have: a query for each
    /// item, whose document must still be there.
    SharedArticles sharedArticles();

private:
    SqliteStep insert(const ArticleRecord &article);
    ArticleRecord articleOf(const ItemRecord &item, const QString &date) const;

    SqlCommand &command_;
    const QString channelName_; // escaped
    const QString category_;    // escaped
    int storedCount_ = 0;
    QSet<QByteArray> skippedGuids_;
};

} // namespace tidebrook
