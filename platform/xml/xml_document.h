#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QByteArrayView>
#include <QList>
#include <QString>

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace tidebrook {

class XmlDocument;

/// A node of a document: an element, or a run of text between elements, whose name is "#text"; null
/// where there is none. A small value that refers to its document and must not outlive it.
class XmlNode {
public:
    XmlNode() = default;

    bool isNull() const { return document_ == nullptr; }

    /// The name as it is written, with its prefix, in UTF-8.
    QByteArrayView name() const;

    XmlNode firstChild() const;
    XmlNode nextSibling() const;

    /// The text of all descendants, one after another, without white space at both ends, in UTF-8.
    QByteArrayView text() const;

    /// The same with the white space at both ends.
    QByteArrayView wholeText() const;

    /// The first character of the white space that was dropped between this element and its next
    /// sibling, or its parent's end; null where there was none, and at the upper four levels.
    QChar spaceBehind() const;

    /// A null text when there is no such attribute.
    QString attribute(QByteArrayView name) const;

    /// An attribute by its place among the element's, from 0: its name as it is written, and its
    /// value in UTF-8. Both are of the document.
    std::pair<QByteArrayView, QByteArrayView> attributeAt(std::uint32_t place) const;
    std::uint32_t attributeCount() const;

private:
    friend class XmlDocument;
    XmlNode(const XmlDocument *document, std::uint32_t index)
        : document_(document), index_(index) {}

    const XmlDocument *document_ = nullptr;
    std::uint32_t index_ = 0;
};

/// A well-formed document; read-only, and so safe to be read by several threads. White space
/// between elements, comments and processing instructions are dropped. Undeclared name prefixes are
/// allowed.
///
/// Parsing reads no file, no network and no external entity. In the place of an external DTD stand
/// HTML's named characters; any other entity stays as it is written. Without one an undeclared
/// entity makes a document malformed.
///
/// A document that is not well-formed is refused, and so is one that exceeds a limit: a depth of
/// 1,000 elements, a million nodes or attributes, a thousand attributes in one element, 10,000
/// different names, a name of 1,000 bytes, 48 MiB of text, a prolog of half a MiB, a tag or comment
/// of 2 MiB, or a growth to four times its size by its entities. It takes 80 MB at most beside the
/// bytes.
class XmlDocument {
public:
    /// `charset` as `XmlUtf8Reader` takes it.
    static std::optional<XmlDocument> parse(QByteArrayList bytes, QByteArrayView charset = {});

    /// The document element; never null.
    XmlNode root() const { return XmlNode(this, 0); }

private:
    friend class XmlNode;
    friend class XmlBuilder;

    struct Node {
        std::uint32_t name;            // into names_
        bool hasChildren = false;      // the first one follows its parent
        char spaceBehind = 0;          // before its next sibling
        std::uint32_t nextSibling = 0; // 0: none, for the root is none
        std::uint32_t textBegin = 0;   // into text_; the text of a node's descendants stands in
        std::uint32_t textEnd = 0;     // one piece there, since all text is kept in order
        std::uint32_t attributes = 0;  // first of them in attributes_
        std::uint32_t attributeCount = 0;
    };
    struct Attribute {
        std::uint32_t name;
        std::uint32_t valueBegin; // into values_
        std::uint32_t valueEnd;
    };

    // Lists, which grow in place where they are large.
    QList<Node> nodes_;
    QList<Attribute> attributes_;
    std::vector<QByteArray> names_;
    QByteArray text_;   // UTF-8
    QByteArray values_; // UTF-8
};

} // namespace tidebrook
