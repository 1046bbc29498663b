#pragma once

#include <QString>

namespace tidebrook {

/// Stands for a text that a document does not supply.
inline constexpr QStringView missingText = u"DEFAULT";

/// One item of a feed as it is read, each text cut to its capacity in UTF-16 units.
struct ItemRecord {
    QString title;           // 255
    QString description;     // 3,000
    QString publicationDate; // 40, as the feed writes it
    QString category;        // 40
    QString guid;            // 512
    QString link;            // 512
    qint64 timestamp = 0;    // seconds on the ingestion clock
};

/// What a feed says of itself, each text cut to its capacity in UTF-16 units.
struct ChannelHeaderRecord {
    QString title;         // 255
    QString link;          // 512
    QString description;   // 3,000
    QString lastBuildDate; // 40
    QString imageUrl;      // 512
    QString imageLink;     // 512
    QString imageTitle;    // 255
};

} // namespace tidebrook
