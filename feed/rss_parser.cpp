#include "feed/rss_parser.h"

#include "feed/pub_date.h"
#include "platform/base/text.h"
#include "store/escape_sql.h"

#include <array>

namespace tidebrook {

namespace {

constexpr qsizetype dateCapacity = 40;
constexpr int itemLimit = 100'000; // more would keep the database for seconds

// Which field of a record an element fills, and how much of its text.
template <typename Record> struct FieldRule {
    QByteArrayView element;
    QByteArray Record::*field;
    qsizetype capacity;
};

constexpr std::array channelRules{
    FieldRule<ChannelHeaderRecord>{"title", &ChannelHeaderRecord::title, titleCapacity},
    FieldRule<ChannelHeaderRecord>{"link", &ChannelHeaderRecord::link, linkCapacity},
    FieldRule<ChannelHeaderRecord>{"description", &ChannelHeaderRecord::description,
                                   descriptionCapacity},
    FieldRule<ChannelHeaderRecord>{"lastBuildDate", &ChannelHeaderRecord::lastBuildDate,
                                   dateCapacity},
};

constexpr std::array imageRules{
    FieldRule<ChannelHeaderRecord>{"url", &ChannelHeaderRecord::imageUrl, linkCapacity},
    FieldRule<ChannelHeaderRecord>{"title", &ChannelHeaderRecord::imageTitle, titleCapacity},
    FieldRule<ChannelHeaderRecord>{"link", &ChannelHeaderRecord::imageLink, linkCapacity},
};

constexpr std::array itemRules{
    FieldRule<ItemRecord>{"title", &ItemRecord::title, titleCapacity},
    FieldRule<ItemRecord>{"description", &ItemRecord::description, descriptionCapacity},
    FieldRule<ItemRecord>{"pubDate", &ItemRecord::publicationDate, dateCapacity},
    FieldRule<ItemRecord>{"link", &ItemRecord::link, linkCapacity},
    FieldRule<ItemRecord>{"guid", &ItemRecord::guid, linkCapacity},
    FieldRule<ItemRecord>{"category", &ItemRecord::category, categoryCapacity},
};

// An element without text leaves its field as it was.
template <typename Record, std::size_t count>
void applyRules(const std::array<FieldRule<Record>, count> &rules, XmlNode node, Record &record) {
    for (const FieldRule<Record> &rule : rules) {
        if (rule.element != node.name())
            continue;
        const QByteArrayView text = cutUtf8ToUnits(node.text(), rule.capacity);
        if (!text.isEmpty())
            record.*rule.field = QByteArray::fromRawData(text.data(), text.size());
        return;
    }
}

} // namespace

RssParser::RssParser(SqlCommand &command, const QString &channelName,
                     const std::optional<QString> &category)
    : category_(category), ingestion_(command, channelName, category.value_or(QString())) {
    const QByteArray missing = missingUtf8.toByteArray();
    // The items of a refresh share one stamp, which keeps them in the feed's own order.
    emptyItem_ = {missing, missing, missing, missing, missing, missing, ingestionClock(0)};
    if (category_)
        emptyItem_.category = cutText(*category_, categoryCapacity).toUtf8();
}

bool RssParser::parse(XmlNode root) {
    if (!ingestion_.pruneChannel())
        return false;
    const QByteArray missing = missingUtf8.toByteArray();
    header_ = {missing, missing, missing, missing, missing, missing, missing};
    const XmlNode channel = root.firstChild();
    if (channel.isNull() || channel.firstChild().isNull())
        return false;
    for (XmlNode node = channel.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (node.name() == "item") {
            if (!readItem(node))
                return false;
        } else if (node.name() == "image") {
            readImage(node);
        } else {
            readChannelField(node);
        }
    }
    return true;
}

void RssParser::readChannelField(XmlNode node) { applyRules(channelRules, node, header_); }

void RssParser::readImage(XmlNode image) {
    for (XmlNode node = image.firstChild(); !node.isNull(); node = node.nextSibling())
        applyRules(imageRules, node, header_);
}

bool RssParser::readItem(XmlNode item) {
    if (++itemCount_ > itemLimit)
        return false;
    item_ = emptyItem_;
    for (XmlNode node = item.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (category_ || node.name() != "category")
            applyRules(itemRules, node, item_);
    }
    if (!ingestion_.insertItem(std::move(item_)))
        return false;
    item_ = {};
    header_ = {};
    return true;
}

} // namespace tidebrook
