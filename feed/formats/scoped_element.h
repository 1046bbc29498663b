#pragma once

#include "platform/xml/xml_document.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QUrl>

#include <functional>
#include <initializer_list>
#include <optional>

namespace tidebrook {

/// An element with what the elements around it say of it: what its prefix stands for, and what
/// address its links are relative to. It must not outlive its parent or its document. For one
/// thread.
class ScopedElement {
public:
    /// The root of a document that is at `address`, which may be empty.
    ScopedElement(XmlNode root, const QUrl &address);
    ScopedElement(XmlNode node, const ScopedElement &parent);

    XmlNode node() const { return node_; }

    /// The name by its namespace: without a prefix in those of the feeds' formats, and in none;
    /// with a prefix of ours ("dc", "content", "rdf") in those that extend them. As it is written
    /// where its prefix is not declared, and empty in any other namespace.
    QByteArray name() const { return knownName(node_.name(), true); }

    /// An attribute by such a name; null when there is none.
    QString attribute(QByteArrayView name) const;

    /// A link as a whole address. As it is written when it is whole, too long for an article's, or
    /// when no address is known that it could be relative to.
    QString wholeLink(const QString &link) const;

    /// What relative links in the element are relative to, by xml:base and the document's address.
    const QUrl &base() const;

private:
    void takeDeclarations();
    QByteArray knownName(QByteArrayView written, bool isElement) const;

    XmlNode node_;
    const ScopedElement *parent_ = nullptr;
    QUrl address_;                               // of the root's document
    QHash<QByteArray, QByteArrayView> prefixes_; // ours, by those that this element declares
    mutable std::optional<QUrl> base_;
};

/// A link as `ScopedElement::wholeLink` has it.
QString wholeLink(const QUrl &base, const QString &link);

/// The first `capacity` UTF-16 units of a text of the document.
QString decoded(QByteArrayView text, qsizetype capacity);

/// Visits the children of a name, in order, until `visit` returns false.
void visitChildren(const ScopedElement &parent, QByteArrayView name,
                   const std::function<bool(const ScopedElement &)> &visit);

/// The first child of each name.
using ElementParts = QHash<QByteArray, ScopedElement>;
ElementParts partsOf(const ScopedElement &element);

/// The text of the first of these parts that has one; its first `capacity` UTF-16 units.
QString textOf(const ElementParts &parts, std::initializer_list<const char *> names,
               qsizetype capacity);

} // namespace tidebrook
