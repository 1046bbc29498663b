#include "platform/xml_document.h"

#include "platform/xml_encoding.h"

#include <expat.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <unordered_map>

namespace tidebrook {

namespace {

constexpr std::size_t depthLimit = 1000;
constexpr std::size_t nodeLimit = 2'000'000;
constexpr int attributeLimit = 2 * 1000; // names and values of one element
constexpr std::size_t textLimit = 64 * 1024 * 1024;
constexpr std::uint32_t textName = 0; // "#text" is the first name of every document

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

struct ParserFree {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

} // namespace

/// Builds a document from the parser's events. An event that breaks a limit stops the parser.
class XmlBuilder {
public:
    XmlBuilder() : parser_(XML_ParserCreate("UTF-8")) { document_.names_.push_back("#text"); }

    std::optional<XmlDocument> build(QByteArrayView utf8) {
        if (!parser_)
            return std::nullopt;
        XML_Parser parser = parser_.get();
        XML_SetUserData(parser, this);
        XML_SetElementHandler(
            parser,
            [](void *self, const char *name, const char **attributes) {
                static_cast<XmlBuilder *>(self)->beginElement(name, attributes);
            },
            [](void *self, const char *) { static_cast<XmlBuilder *>(self)->endElement(); });
        XML_SetCharacterDataHandler(parser, [](void *self, const char *text, int size) {
            static_cast<XmlBuilder *>(self)->addText(text, size);
        });
        // A comment, an instruction or the edge of a CDATA section ends a run of text.
        XML_SetCommentHandler(
            parser, [](void *self, const char *) { static_cast<XmlBuilder *>(self)->endText(); });
        XML_SetProcessingInstructionHandler(parser, [](void *self, const char *, const char *) {
            static_cast<XmlBuilder *>(self)->endText();
        });
        XML_SetCdataSectionHandler(
            parser, [](void *self) { static_cast<XmlBuilder *>(self)->endText(); },
            [](void *self) { static_cast<XmlBuilder *>(self)->endText(); });
        if (static_cast<std::size_t>(utf8.size()) > textLimit)
            return std::nullopt;
        document_.text_ = QByteArray(utf8.size(), Qt::Uninitialized);
        const XML_Status status =
            XML_Parse(parser, utf8.data(), static_cast<int>(utf8.size()), XML_TRUE);
        if (status != XML_STATUS_OK)
            return std::nullopt;
        document_.text_.truncate(textEnd_);
        return std::move(document_);
    }

private:
    struct OpenElement {
        std::uint32_t node;
        std::uint32_t lastChild = 0;
    };

    // The parser may still tell of what it has begun to tell of; nothing of it is wanted.
    void stop() {
        isStopped_ = true;
        XML_StopParser(parser_.get(), XML_FALSE);
    }

    std::uint32_t nameIndex(const char *name) {
        const auto found = nameIndices_.find(std::string_view(name));
        if (found != nameIndices_.end())
            return found->second;
        const auto index = static_cast<std::uint32_t>(document_.names_.size());
        const QByteArray &stored = document_.names_.emplace_back(name);
        nameIndices_.emplace(
            std::string_view(stored.constData(), static_cast<std::size_t>(stored.size())), index);
        return index;
    }

    std::uint32_t addNode(std::uint32_t name) {
        const auto index = static_cast<std::uint32_t>(document_.nodes_.size());
        XmlDocument::Node &node = document_.nodes_.emplace_back();
        node.name = name;
        node.textBegin = textEnd_;
        if (!open_.empty()) {
            OpenElement &parent = open_.back();
            XmlDocument::Node &parentNode = document_.nodes_[parent.node];
            (parent.lastChild ? document_.nodes_[parent.lastChild].nextSibling
                              : parentNode.firstChild) = index;
            ++parentNode.childCount;
            parent.lastChild = index;
        }
        return index;
    }

    void beginElement(const char *name, const char **attributes) {
        endText();
        const bool isTooMuch = open_.size() >= depthLimit || document_.nodes_.size() >= nodeLimit ||
                               document_.attributes_.size() >= nodeLimit ||
                               XML_GetSpecifiedAttributeCount(parser_.get()) > attributeLimit;
        if (isTooMuch) {
            stop();
            return;
        }
        const std::uint32_t index = addNode(nameIndex(name));
        const auto first = static_cast<std::uint32_t>(document_.attributes_.size());
        for (; *attributes; attributes += 2)
            document_.attributes_.push_back({nameIndex(attributes[0]), attributes[1]});
        XmlDocument::Node &node = document_.nodes_[index];
        node.attributes = first;
        node.attributeCount = static_cast<std::uint32_t>(document_.attributes_.size()) - first;
        open_.push_back({index});
    }

    void endElement() {
        endText();
        if (isStopped_)
            return;
        document_.nodes_[open_.back().node].textEnd = textEnd_;
        open_.pop_back();
    }

    void addText(const char *text, int size) {
        // There is room for the text of every document but one that lets entities grow.
        if (size > document_.text_.size() - qsizetype{textEnd_})
            document_.text_.resize(2 * document_.text_.size() + size);
        std::memcpy(textData() + textEnd_, text, static_cast<std::size_t>(size));
        textEnd_ += static_cast<std::uint32_t>(size);
        if (textEnd_ > textLimit)
            stop();
    }

    // Nobody shares the text while it is being built, so this never copies it.
    char *textData() { return document_.text_.data(); }

    void endText() {
        if (isStopped_)
            return;
        const char *text = textData();
        if (std::all_of(text + textBegin_, text + textEnd_, isSpace)) {
            textEnd_ = textBegin_;
            return;
        }
        const std::uint32_t index = addNode(textName);
        document_.nodes_[index].textBegin = textBegin_;
        document_.nodes_[index].textEnd = textEnd_;
        textBegin_ = textEnd_;
    }

    std::unique_ptr<XML_ParserStruct, ParserFree> parser_;
    XmlDocument document_;
    std::unordered_map<std::string_view, std::uint32_t> nameIndices_; // views of names_' bytes
    std::vector<OpenElement> open_;
    bool isStopped_ = false;
    std::uint32_t textBegin_ = 0; // where the run of text being read began
    std::uint32_t textEnd_ = 0;   // how much of the text is filled
};

std::string_view XmlNode::name() const {
    const QByteArray &name = document_->names_[document_->nodes_[index_].name];
    return {name.constData(), static_cast<std::size_t>(name.size())};
}

int XmlNode::childCount() const { return static_cast<int>(document_->nodes_[index_].childCount); }

XmlNode XmlNode::firstChild() const {
    const std::uint32_t child = document_->nodes_[index_].firstChild;
    return child ? XmlNode(document_, child) : XmlNode();
}

XmlNode XmlNode::nextSibling() const {
    const std::uint32_t sibling = document_->nodes_[index_].nextSibling;
    return sibling ? XmlNode(document_, sibling) : XmlNode();
}

QString XmlNode::text() const {
    const XmlDocument::Node &node = document_->nodes_[index_];
    const QByteArrayView text(document_->text_);
    return QString::fromUtf8(text.sliced(node.textBegin, node.textEnd - node.textBegin).trimmed());
}

QString XmlNode::attribute(std::string_view name) const {
    const XmlDocument::Node &node = document_->nodes_[index_];
    for (std::uint32_t i = node.attributes; i < node.attributes + node.attributeCount; ++i) {
        const XmlDocument::Attribute &attribute = document_->attributes_[i];
        if (document_->names_[attribute.name] ==
            QByteArrayView(name.data(), static_cast<qsizetype>(name.size())))
            return QString::fromUtf8(attribute.value);
    }
    return {};
}

std::optional<XmlDocument> XmlDocument::parse(QByteArrayView bytes, QByteArrayView charset) {
    QByteArray storage;
    const std::optional<QByteArrayView> utf8 = xmlAsUtf8(bytes, charset, storage);
    return utf8 ? XmlBuilder().build(*utf8) : std::nullopt;
}

} // namespace tidebrook
