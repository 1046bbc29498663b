#include "feed/formats/atom.h"

#include "feed/formats/inline_markup.h"
#include "feed/formats/rss_writer.h"
#include "store/escape_sql.h"

namespace tidebrook {

namespace {

bool isMarkup(const ScopedElement &construct) {
    return construct.attribute("type").contains(u"html", Qt::CaseInsensitive);
}

// A content may be a picture, or anything else.
bool isReadable(const ScopedElement &construct) {
    const QString type = construct.attribute("type");
    const bool isText = !type.contains(u'/') || type.startsWith(u"text/") || isMarkup(construct);
    return isText && construct.attribute("mode") != u"base64";
}

bool hasElements(XmlNode node) {
    for (XmlNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.name() != "#text")
            return true;
    }
    return false;
}

// XHTML stands in a `div` that is not part of it.
QString markupOf(const ScopedElement &construct) {
    XmlNode only = construct.node().firstChild();
    const bool isWrapped = construct.attribute("type") == u"xhtml" && only.name().endsWith("div") &&
                           only.nextSibling().isNull();
    return inlineMarkup(isWrapped ? only : construct.node(), construct.base());
}

/// What `text`, `html` and `xhtml` say, as HTML.
QString htmlOf(const ScopedElement &construct) {
    if (hasElements(construct.node()))
        return markupOf(construct);
    const QString text = decoded(construct.node().text(), descriptionCapacity);
    return isMarkup(construct) ? text : text.toHtmlEscaped();
}

QString htmlOf(const ElementParts &parts, std::initializer_list<const char *> names) {
    for (const char *name : names) {
        const auto part = parts.constFind(name);
        QString html = part != parts.cend() && isReadable(*part) ? htmlOf(*part) : QString();
        if (!html.isEmpty())
            return html;
    }
    return {};
}

QString titleOf(const ElementParts &parts) {
    const auto title = parts.constFind("title");
    if (title == parts.cend())
        return {};
    return isMarkup(*title) ? plainText(htmlOf(*title))
                            : decoded(title->node().text(), titleCapacity);
}

bool isAlternate(const ScopedElement &link) {
    const QString relation = link.attribute("rel");
    return relation.isEmpty() || relation == u"alternate" ||
           relation == u"http://www.iana.org/assignments/relation/alternate";
}

// Of several alternatives, the page.
QString linkOf(const ScopedElement &element) {
    QString found;
    visitChildren(element, "link", [&](const ScopedElement &link) {
        const QString type = link.attribute("type");
        const bool isPage = type.isEmpty() || type.contains(u"html");
        if (!isAlternate(link))
            return true;
        if (isPage || found.isEmpty())
            found = link.wholeLink(link.attribute("href"));
        return !isPage;
    });
    return found;
}

FeedItem itemOfEntry(const ScopedElement &entry) {
    const ElementParts parts = partsOf(entry);
    return {titleOf(parts), linkOf(entry), textOf(parts, {"id"}, linkCapacity),
            textOf(parts, {"published", "issued", "updated", "modified", "created", "dc:date"},
                   dateCapacity),
            htmlOf(parts, {"content", "summary"})};
}

} // namespace

QByteArray rssOfAtom(const ScopedElement &feed) {
    const ElementParts parts = partsOf(feed);
    RssWriter writer({titleOf(parts), linkOf(feed), htmlOf(parts, {"subtitle", "tagline"})});
    visitChildren(feed, "entry", [&](const ScopedElement &entry) {
        writer.add(itemOfEntry(entry));
        return !writer.isFull();
    });
    return writer.end();
}

} // namespace tidebrook
