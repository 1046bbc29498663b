#include "platform/xml/xml_document.h"

namespace tidebrook {

QByteArrayView XmlNode::name() const { return document_->names_[document_->nodes_[index_].name]; }

XmlNode XmlNode::firstChild() const {
    return document_->nodes_[index_].hasChildren ? XmlNode(document_, index_ + 1) : XmlNode();
}

XmlNode XmlNode::nextSibling() const {
    const std::uint32_t sibling = document_->nodes_[index_].nextSibling;
    return sibling ? XmlNode(document_, sibling) : XmlNode();
}

QByteArrayView XmlNode::wholeText() const {
    const XmlDocument::Node &node = document_->nodes_[index_];
    return QByteArrayView(document_->text_).sliced(node.textBegin, node.textEnd - node.textBegin);
}

QByteArrayView XmlNode::text() const { return wholeText().trimmed(); }

QChar XmlNode::spaceBehind() const { return QLatin1Char(document_->nodes_[index_].spaceBehind); }

QString XmlNode::attribute(QByteArrayView name) const {
    for (std::uint32_t place = 0; place < attributeCount(); ++place) {
        const auto [written, value] = attributeAt(place);
        if (written == name)
            return QString::fromUtf8(value);
    }
    return {};
}

std::pair<QByteArrayView, QByteArrayView> XmlNode::attributeAt(std::uint32_t place) const {
    const std::uint32_t first = document_->nodes_[index_].attributes;
    const XmlDocument::Attribute &attribute = document_->attributes_[first + place];
    return {document_->names_[attribute.name],
            QByteArrayView(document_->values_)
                .sliced(attribute.valueBegin, attribute.valueEnd - attribute.valueBegin)};
}

std::uint32_t XmlNode::attributeCount() const { return document_->nodes_[index_].attributeCount; }

} // namespace tidebrook
