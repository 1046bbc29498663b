#pragma once

#include <QString>

namespace tidebrook {

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

} // namespace tidebrook
