#pragma once

#include <QByteArray>
#include <QString>
#include <QXmlStreamWriter>

namespace tidebrook {

/// UTF-16 units of a date.
inline constexpr qsizetype dateCapacity = 40;

/// An item of a feed. What is empty the feed does not say.
struct FeedItem {
    QString title; // a plain text
    QString link;
    QString guid;
    QString date;        // as RFC 3339, as a beginning of that, or as RSS has it
    QString description; // HTML
};

/// What a feed says of itself.
struct FeedHeader {
    QString title;
    QString link;
    QString description;
};

/// Writes an RSS document. Texts are cut to the capacities that they are stored with, and lose the
/// characters that no XML can have.
class RssWriter {
public:
    explicit RssWriter(const FeedHeader &header);

    /// An item without a title is named by the beginning of its text. A quote in its link or guid,
    /// which no article can have, is written in its percent-encoding.
    void add(const FeedItem &item);

    /// Whether no reader of the document would take another item.
    bool isFull() const;

    /// The document; empty when it would be larger than a feed that is downloaded can be.
    QByteArray end();

private:
    void write(const QString &element, const QString &text, qsizetype capacity);

    QByteArray bytes_;
    QXmlStreamWriter writer_;
    int itemCount_ = 0;
};

/// HTML's text on one line.
QString plainText(const QString &html);

} // namespace tidebrook
