#pragma once

#include <QByteArray>
#include <QLatin1String>
#include <QString>

namespace tidebrook {

/// Stands for a text that a document does not supply.
inline constexpr QLatin1String missingText("DEFAULT");
inline bool isMissing(const QString &text) { return text == missingText; }
inline constexpr QByteArrayView missingUtf8(missingText.data(), missingText.size());

/// One item of a feed as it is read. The texts are in UTF-8, each cut to its capacity in UTF-16
/// units. They may refer to the bytes of the document, which must outlive them.
struct ItemRecord {
    QByteArray title;           // 255
    QByteArray description;     // 3,000
    QByteArray publicationDate; // 40, as the feed writes it
    QByteArray category;        // 40
    QByteArray guid;            // 512
    QByteArray link;            // 512
    qint64 timestamp = 0;       // seconds on the ingestion clock
};

/// What a feed says of itself, in such texts.
struct ChannelHeaderRecord {
    QByteArray title;         // 255
    QByteArray link;          // 512
    QByteArray description;   // 3,000
    QByteArray lastBuildDate; // 40
    QByteArray imageUrl;      // 512
    QByteArray imageLink;     // 512
    QByteArray imageTitle;    // 255
};

} // namespace tidebrook
