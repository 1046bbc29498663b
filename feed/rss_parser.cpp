#include "feed/rss_parser.h"

#include "feed/pub_date.h"
#include "store/escape_sql.h"

#include <array>

namespace tidebrook {

namespace {

constexpr qsizetype dateCapacity = 40;
constexpr int itemLimit = 100'000; // more would keep the database for seconds

// Which field of an item an element fills, and how much of its text.
struct FieldRule {
    QByteArrayView element;
    QString ItemRecord::*field;
    qsizetype capacity;
};

constexpr std::array itemRules{
    FieldRule{"title", &ItemRecord::title, titleCapacity},
    FieldRule{"description", &ItemRecord::description, descriptionCapacity},
    FieldRule{"pubDate", &ItemRecord::publicationDate, dateCapacity},
    FieldRule{"link", &ItemRecord::link, linkCapacity},
    FieldRule{"guid", &ItemRecord::guid, linkCapacity},
};

// An element without text leaves its field as it was.
void applyRules(XmlNode node, ItemRecord &item) {
    for (const FieldRule &rule : itemRules) {
        if (rule.element != node.name())
            continue;
        QString text = node.text(rule.capacity);
        if (!text.isEmpty())
            item.*rule.field = std::move(text);
        return;
    }
}

} // namespace

RssParser::RssParser(SqlCommand &command, const QString &channelName, const QString &category)
    : ingestion_(command, channelName, category) {
    const QString missing = missingText.toString();
    // The items of a refresh share one stamp, which keeps them in the feed's own order.
    emptyItem_ = {missing, missing, missing, missing, missing, ingestionClock(0)};
}

bool RssParser::parse(XmlNode root) {
    if (!ingestion_.pruneChannel())
        return false;
    const XmlNode channel = root.firstChild();
    if (channel.isNull() || channel.firstChild().isNull())
        return false;
    for (XmlNode node = channel.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (node.name() == "item" && !readItem(node))
            return false;
    }
    return true;
}

bool RssParser::readItem(XmlNode item) {
    if (++itemCount_ > itemLimit)
        return false;
    ItemRecord record = emptyItem_;
    for (XmlNode node = item.firstChild(); !node.isNull(); node = node.nextSibling())
        applyRules(node, record);
    return ingestion_.insertItem(std::move(record));
}

} // namespace tidebrook
