#include "feed/formats/rss_writer.h"

#include "platform/base/text.h"
#include "platform/html/html_tokens.h"
#include "platform/xml/html_entities.h"
#include "store/escape_sql.h"

#include <QDate>
#include <QLocale>
#include <QRegularExpression>

namespace tidebrook {

namespace {

constexpr qsizetype sizeLimit = 32 * 1024 * 1024; // bytes
constexpr int itemLimit = 100'000;                // the parser refuses the next one
constexpr qsizetype nameLength = 80;              // of an item by its text
constexpr QStringView inlineTags =
    u" a abbr b big cite code del em font i ins kbd mark q s small span strong sub sup tt u var ";

// The day as it is written, whatever the zone, as RSS dates are read too.
QString rssDate(const QString &date) {
    static const QRegularExpression w3c(
        QStringLiteral("^(\\d{4})(?:-(\\d\\d)(?:-(\\d\\d))?)?(?:$|[T ])"));
    const QRegularExpressionMatch parts = w3c.match(date);
    const auto number = [&](int part) {
        return parts.captured(part).isEmpty() ? 1 : parts.captured(part).toInt();
    };
    const QDate day = parts.hasMatch() ? QDate(number(1), number(2), number(3)) : QDate();
    return day.isValid() ? QLocale::c().toString(day, u"dd MMM yyyy") : date;
}

QString withoutQuotes(const QString &address) {
    return cutText(address, linkCapacity).toString().replace(u'\'', QLatin1String("%27"));
}

QString nameByText(const QString &html) {
    QString text = plainText(cutText(html, descriptionCapacity).toString());
    if (text.size() <= nameLength)
        return text;
    const QStringView begin = cutText(text, nameLength);
    const qsizetype blank = begin.lastIndexOf(u' ');
    return begin.first(blank > 0 ? blank : begin.size()) + u'\u2026';
}

// Items without a name of their own would all be one article.
QString nameOf(const FeedItem &item) {
    const QString name = item.title.isEmpty() ? nameByText(item.description) : item.title;
    const QString &address = item.link.isEmpty() ? item.guid : item.link;
    return name.isEmpty() ? address : name;
}

} // namespace

RssWriter::RssWriter(const FeedHeader &header) : writer_(&bytes_) {
    writer_.writeStartElement(QStringLiteral("rss"));
    writer_.writeStartElement(QStringLiteral("channel"));
    // The parser takes a channel without any element for a broken one.
    writer_.writeTextElement(QStringLiteral("generator"), QStringLiteral("Tidebrook"));
    write(QStringLiteral("title"), header.title, titleCapacity);
    write(QStringLiteral("link"), header.link, linkCapacity);
    write(QStringLiteral("description"), header.description, descriptionCapacity);
}

void RssWriter::add(const FeedItem &item) {
    ++itemCount_;
    writer_.writeStartElement(QStringLiteral("item"));
    write(QStringLiteral("title"), nameOf(item), titleCapacity);
    write(QStringLiteral("link"), withoutQuotes(item.link), linkCapacity);
    write(QStringLiteral("guid"), withoutQuotes(item.guid), linkCapacity);
    write(QStringLiteral("pubDate"), rssDate(item.date), dateCapacity);
    write(QStringLiteral("description"), item.description, descriptionCapacity);
    writer_.writeEndElement();
}

QByteArray RssWriter::end() {
    writer_.writeEndDocument();
    return bytes_.size() > sizeLimit ? QByteArray() : std::move(bytes_);
}

bool RssWriter::isFull() const { return itemCount_ > itemLimit || bytes_.size() > sizeLimit; }

void RssWriter::write(const QString &element, const QString &text, qsizetype capacity) {
    if (!text.isEmpty())
        writer_.writeTextElement(element, xmlText(cutText(text, capacity).toString()));
}

QString plainText(const QString &html) {
    QString text;
    HtmlTokens tokens(html);
    while (tokens.next()) {
        if (tokens.kind() == HtmlTokens::Kind::Text)
            text += tokens.text();
        else if (!inlineTags.contains(QString(u' ' + tokens.tag().name + u' ')))
            text += u' ';
    }
    return withoutHtmlEntities(text).simplified();
}

} // namespace tidebrook
