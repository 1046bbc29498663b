#pragma once

#include "feed/feed_records.h"
#include "platform/sql/sql.h"
#include "store/records.h"

#include <QString>

namespace tidebrook {

/// Brings the items of one channel into the article table and takes old articles out of it. It
/// runs inside a change that its caller has begun. Not thread-safe.
class ArticleIngestion {
public:
    /// `category` goes into each article's statement as it is: it has been through EscapeSql.
    ArticleIngestion(SqlCommand &command, const QString &channelName, const QString &category);

    /// The stamp that articles must have not to be pruned, at this moment.
    static qint64 oldestKept();

    /// Deletes the channel's articles whose stamp is older than seven days of the ingestion
    /// clock. Items are stamped two days back, so an article stays for five.
    bool pruneChannel();

    /// Stores an item as an unread article. One whose guid is stored already, in any channel, or
    /// whose title this channel has, is left out with success: the article that is there keeps
    /// its read flag and its age. False when the item has neither guid nor link, or a quote in
    /// its guid or link, or a lone one in the category, or when the database failed.
    bool insertItem(ItemRecord item);

    /// How many articles were stored.
    int storedCount() const { return storedCount_; }

private:
    ArticleRecord articleOf(const ItemRecord &item, const QString &date) const;

    SqlCommand &command_;
    const QString channelName_; // escaped
    const QString category_;
    int storedCount_ = 0;
};

} // namespace tidebrook
