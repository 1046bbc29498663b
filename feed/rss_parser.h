#pragma once

#include "feed/article_ingestion.h"
#include "feed/feed_records.h"
#include "platform/sql/sql.h"
#include "platform/xml/xml_document.h"

#include <QString>

#include <optional>

namespace tidebrook {

/// Walks a document and has its items ingested. The first child of the root is the channel,
/// whatever its name. Not thread-safe.
class RssParser {
public:
    /// `category`, escaped, is what the articles are stored under; without one it is empty, and
    /// items keep their own category element to themselves.
    RssParser(SqlCommand &command, const QString &channelName,
              const std::optional<QString> &category);

    /// Prunes the channel and stores the items in the document's order. False when that fails, when
    /// the channel is empty, or at the 100,001st item; the items before it stay stored.
    bool parse(XmlNode root);

    int storedCount() const { return ingestion_.storedCount(); }
    SharedArticles sharedArticles() { return ingestion_.sharedArticles(); }

private:
    void readChannelField(XmlNode node);
    void readImage(XmlNode image);
    bool readItem(XmlNode item);

    const std::optional<QString> category_;
    ArticleIngestion ingestion_;
    ItemRecord emptyItem_; // what each item begins as
    ItemRecord item_;
    int itemCount_ = 0;
    ChannelHeaderRecord header_; // what the channel says of itself behind its last item
};

} // namespace tidebrook
