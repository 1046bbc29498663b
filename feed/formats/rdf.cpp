#include "feed/formats/rdf.h"

#include "feed/formats/rss_writer.h"
#include "store/escape_sql.h"

namespace tidebrook {

namespace {

FeedItem itemOfRdf(const ScopedElement &item) {
    const ElementParts parts = partsOf(item);
    const QString about = item.wholeLink(item.attribute("rdf:about"));
    const QString link = item.wholeLink(textOf(parts, {"link"}, linkCapacity));
    return {textOf(parts, {"title"}, titleCapacity), link.isEmpty() ? about : link, about,
            textOf(parts, {"dc:date", "pubDate"}, dateCapacity),
            textOf(parts, {"description", "content:encoded"}, descriptionCapacity)};
}

FeedHeader headerOf(const ElementParts &parts) {
    return {textOf(parts, {"title"}, titleCapacity), textOf(parts, {"link"}, linkCapacity),
            textOf(parts, {"description"}, descriptionCapacity)};
}

} // namespace

std::optional<QByteArray> rssOfRdf(const ScopedElement &rdf) {
    const ElementParts parts = partsOf(rdf);
    const auto channel = parts.constFind("channel");
    if (channel == parts.cend() && !parts.contains("item"))
        return std::nullopt;
    RssWriter writer(channel == parts.cend() ? FeedHeader() : headerOf(partsOf(*channel)));
    visitChildren(rdf, "item", [&](const ScopedElement &item) {
        writer.add(itemOfRdf(item));
        return !writer.isFull();
    });
    return writer.end();
}

} // namespace tidebrook
