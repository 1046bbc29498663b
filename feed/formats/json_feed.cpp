#include "feed/formats/json_feed.h"

#include "feed/formats/rss_writer.h"
#include "feed/formats/scoped_element.h"
#include "platform/base/text.h"
#include "store/escape_sql.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace tidebrook {

namespace {

constexpr int valueLimit = 1'000'000; // the parser needs a hundred bytes for the smallest of them

constexpr QByteArrayView byteOrderMark = "\xEF\xBB\xBF";

QByteArrayView withoutMark(QByteArrayView text) {
    return text.startsWith(byteOrderMark) ? text.sliced(byteOrderMark.size()) : text;
}

// Where the string that begins at `at` ends.
qsizetype endOfString(QByteArrayView text, qsizetype at) {
    for (++at; at < text.size() && text[at] != '"'; ++at)
        at += text[at] == '\\' ? 1 : 0;
    return at;
}

// Each name and value but the outermost has one of these before it.
bool hasTooManyValues(QByteArrayView text) {
    int count = 0;
    for (qsizetype at = 0; at < text.size() && count <= valueLimit; ++at) {
        const char c = text[at];
        if (c == '"')
            at = endOfString(text, at);
        else
            count += c == ',' || c == ':' || c == '[' || c == '{' ? 1 : 0;
    }
    return count > valueLimit;
}

// Cut to the largest capacity, that of a description.
QString textOf(const QJsonObject &object, std::initializer_list<QStringView> names) {
    for (const QStringView name : names) {
        // An id may be a number, too.
        const QJsonValue value = object.value(name);
        QString text = value.isDouble() ? value.toVariant().toString() : value.toString();
        if (!text.isEmpty())
            return cutText(text, descriptionCapacity).toString();
    }
    return {};
}

QString htmlOf(const QJsonObject &item) {
    const QString html = textOf(item, {u"content_html"});
    const QString text = textOf(item, {u"content_text", u"summary"});
    return html.isEmpty() ? text.toHtmlEscaped().replace(u'\n', QLatin1String("<br>")) : html;
}

FeedItem itemOfJson(const QJsonObject &item, const QUrl &address) {
    return {textOf(item, {u"title"}), wholeLink(address, textOf(item, {u"url", u"external_url"})),
            textOf(item, {u"id"}), textOf(item, {u"date_published", u"date_modified"}),
            htmlOf(item)};
}

bool isFeed(const QJsonObject &feed) {
    return textOf(feed, {u"version"}).contains(u"jsonfeed.org/version/1") &&
           feed.value(u"items").isArray();
}

} // namespace

bool looksLikeJson(const QByteArrayList &body) {
    return !body.isEmpty() && withoutMark(body.first()).trimmed().startsWith('{');
}

QByteArray rssOfJson(QByteArrayList body, const QUrl &address) {
    QByteArray text = std::exchange(body, {}).join();
    if (hasTooManyValues(text))
        return {};
    const QByteArrayView json = withoutMark(text);
    const QJsonDocument document =
        QJsonDocument::fromJson(QByteArray::fromRawData(json.data(), json.size()));
    text.clear();
    if (!document.isObject())
        return {};
    const QJsonObject feed = document.object();
    if (!isFeed(feed))
        return "<json/>";
    RssWriter writer({textOf(feed, {u"title"}), textOf(feed, {u"home_page_url"}),
                      textOf(feed, {u"description"}).toHtmlEscaped()});
    const QJsonArray items = feed.value(u"items").toArray();
    for (qsizetype i = 0; i < items.size() && !writer.isFull(); ++i)
        writer.add(itemOfJson(items[i].toObject(), address));
    return writer.end();
}

} // namespace tidebrook
