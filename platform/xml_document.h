#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tidebrook {

class XmlDocument;

/// A node of a document: an element, or a run of text between elements, whose name is "#text".
/// A small value that refers to its document and must not outlive it; a null node where there is
/// none.
class XmlNode {
public:
    XmlNode() = default;

    bool isNull() const { return document_ == nullptr; }

    /// The name as it is written, with its prefix, in UTF-8.
    std::string_view name() const;

    int childCount() const;
    XmlNode firstChild() const;
    XmlNode nextSibling() const;

    /// The text of all descendants, one after another, without white space at both ends.
    QString text() const;

    /// A null text when there is no such attribute.
    QString attribute(std::string_view name) const;

private:
    friend class XmlDocument;
    XmlNode(const XmlDocument *document, std::uint32_t index)
        : document_(document), index_(index) {}

    const XmlDocument *document_ = nullptr;
    std::uint32_t index_ = 0;
};

/// A document that was read whole and well-formed; read-only, and so free to be read by several
/// threads. White space between elements, comments and processing instructions are not kept.
/// Undeclared name prefixes are let through.
///
/// Reading touches nothing but the bytes it is given: no file, no network, no external or
/// parameter entity, no external DTD. A document that is not well-formed, nests deeper than 1,000
/// elements, has more than two million nodes, a thousand attributes in one element or 64 MiB of
/// text is refused.
class XmlDocument {
public:
    /// `charset` as `xmlAsUtf8` takes it.
    static std::optional<XmlDocument> parse(QByteArrayView bytes, QByteArrayView charset = {});

    /// The document element; never null.
    XmlNode root() const { return XmlNode(this, 0); }

private:
    friend class XmlNode;
    friend class XmlBuilder;

    struct Node {
        std::uint32_t name; // into names_
        std::uint32_t childCount = 0;
        std::uint32_t firstChild = 0;  // 0: none, for the root is no child
        std::uint32_t nextSibling = 0; // 0: none
        std::uint32_t textBegin = 0;   // into text_; the text of a node's descendants stands in
        std::uint32_t textEnd = 0;     // one piece there, since all text is kept in order
        std::uint32_t attributes = 0;  // first of them in attributes_
        std::uint32_t attributeCount = 0;
    };
    struct Attribute {
        std::uint32_t name;
        QByteArray value;
    };

    std::vector<Node> nodes_;
    std::vector<Attribute> attributes_;
    std::vector<QByteArray> names_;
    QByteArray text_; // UTF-8
};

} // namespace tidebrook
