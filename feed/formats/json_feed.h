#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QUrl>

namespace tidebrook {

/// Whether a text begins as a JSON object does, which no XML document does.
bool looksLikeJson(const QByteArrayList &body);

/// A JSON feed (1.0 or 1.1) from `address` as the RSS document of the same content, as
/// `RssWriter::end` returns it. Empty, too, for what is no JSON, is deeper than 1,024 values or has
/// more than a million names and values; for JSON of any other kind a document whose root is
/// "json".
QByteArray rssOfJson(QByteArrayList body, const QUrl &address);

} // namespace tidebrook
