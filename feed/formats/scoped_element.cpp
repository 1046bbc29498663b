#include "feed/formats/scoped_element.h"

#include "platform/base/text.h"
#include "store/escape_sql.h"

#include <algorithm>
#include <array>

namespace tidebrook {

namespace {

constexpr QByteArrayView otherNamespace = "?"; // a prefix that no document can have
constexpr qsizetype addressLimit = 2048;       // a longer one would be copied for every link

struct KnownNamespace {
    QByteArrayView address;
    QByteArrayView prefix; // ours
};

constexpr std::array knownNamespaces{
    KnownNamespace{"", ""},
    KnownNamespace{"http://www.w3.org/2005/Atom", ""},
    KnownNamespace{"http://purl.org/atom/ns#", ""},
    KnownNamespace{"http://purl.org/rss/1.0/", ""},
    KnownNamespace{"http://my.netscape.com/rdf/simple/0.9/", ""},
    KnownNamespace{"http://channel.netscape.com/rdf/simple/0.9/", ""},
    KnownNamespace{"http://www.w3.org/1999/02/22-rdf-syntax-ns#", "rdf"},
    KnownNamespace{"http://purl.org/dc/elements/1.1/", "dc"},
    KnownNamespace{"http://purl.org/rss/1.0/modules/content/", "content"},
};

QByteArrayView prefixOf(QByteArrayView address) {
    const auto *known = std::ranges::find(knownNamespaces, address, &KnownNamespace::address);
    return known == knownNamespaces.end() ? otherNamespace : known->prefix;
}

} // namespace

ScopedElement::ScopedElement(XmlNode root, const QUrl &address)
    : node_(root), address_(address.toEncoded().size() > addressLimit ? QUrl() : address) {
    takeDeclarations();
}

ScopedElement::ScopedElement(XmlNode node, const ScopedElement &parent)
    : node_(node), parent_(&parent) {
    takeDeclarations();
}

void ScopedElement::takeDeclarations() {
    for (std::uint32_t place = 0; place < node_.attributeCount(); ++place) {
        const auto [name, value] = node_.attributeAt(place);
        if (name == "xmlns")
            prefixes_.insert(QByteArray(), prefixOf(value));
        else if (name.startsWith("xmlns:"))
            prefixes_.insert(name.sliced(6).toByteArray(), prefixOf(value));
    }
}

QByteArray ScopedElement::knownName(QByteArrayView written, bool isElement) const {
    const qsizetype colon = written.indexOf(':');
    const QByteArray prefix = written.first(std::max<qsizetype>(colon, 0)).toByteArray();
    const ScopedElement *scope = prefix.isEmpty() && !isElement ? nullptr : this;
    while (scope && !scope->prefixes_.contains(prefix))
        scope = scope->parent_;
    if (!scope)
        return written.toByteArray();
    const QByteArrayView ours = scope->prefixes_.value(prefix);
    if (ours == otherNamespace)
        return {};
    const QByteArrayView local = written.sliced(colon + 1);
    return ours.isEmpty() ? local.toByteArray() : ours.toByteArray() + ':' + local;
}

QString ScopedElement::attribute(QByteArrayView name) const {
    for (std::uint32_t place = 0; place < node_.attributeCount(); ++place) {
        const auto [written, value] = node_.attributeAt(place);
        if (knownName(written, false) == name)
            return QString::fromUtf8(value);
    }
    return {};
}

const QUrl &ScopedElement::base() const {
    if (!base_) {
        const QUrl &outer = parent_ ? parent_->base() : address_;
        const QString own = node_.attribute("xml:base");
        const bool isTaken = !own.isEmpty() && own.size() <= linkCapacity;
        base_ = isTaken ? QUrl(tidebrook::wholeLink(outer, own)) : outer;
    }
    return *base_;
}

QString ScopedElement::wholeLink(const QString &link) const {
    return tidebrook::wholeLink(base(), link);
}

QString wholeLink(const QUrl &base, const QString &link) {
    // Almost every link is whole.
    if (link.startsWith(u"http://") || link.startsWith(u"https://"))
        return link;
    const QUrl url(link.size() > linkCapacity ? QString() : link.trimmed());
    if (url.isEmpty() || !url.isRelative() || base.isRelative())
        return link;
    return QString::fromUtf8(base.resolved(url).toEncoded());
}

QString decoded(QByteArrayView text, qsizetype capacity) {
    return QString::fromUtf8(cutUtf8ToUnits(text, capacity));
}

void visitChildren(const ScopedElement &parent, QByteArrayView name,
                   const std::function<bool(const ScopedElement &)> &visit) {
    for (XmlNode node = parent.node().firstChild(); !node.isNull(); node = node.nextSibling()) {
        const ScopedElement child(node, parent);
        if (child.name() == name && !visit(child))
            return;
    }
}

ElementParts partsOf(const ScopedElement &element) {
    ElementParts parts;
    for (XmlNode node = element.node().firstChild(); !node.isNull(); node = node.nextSibling()) {
        const ScopedElement part(node, element);
        const QByteArray name = part.name();
        if (!parts.contains(name))
            parts.insert(name, part);
    }
    return parts;
}

QString textOf(const ElementParts &parts, std::initializer_list<const char *> names,
               qsizetype capacity) {
    for (const char *name : names) {
        const auto part = parts.constFind(name);
        QString text = part == parts.cend() ? QString() : decoded(part->node().text(), capacity);
        if (!text.isEmpty())
            return text;
    }
    return {};
}

} // namespace tidebrook
