#include "platform/xml/xml_document.h"

#include "platform/xml/html_entities.h"
#include "platform/xml/xml_encoding.h"

#include <QByteArrayMatcher>

#define XML_DTD // declares the functions that limit the growth by entities
#include <expat.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <string_view>
#include <utility>

namespace tidebrook {

namespace {

constexpr std::size_t depthLimit = 1000;
constexpr std::size_t upperLevels = 4; // whose elements are the parts of a feed, and no words
constexpr qsizetype nodeLimit = 1'000'000;
constexpr qsizetype attributeLimit = 1'000'000;
constexpr qsizetype elementAttributeLimit = 1000;
constexpr std::size_t nameLimit = 10'000;
constexpr qsizetype nameSizeLimit = 1000;             // bytes
constexpr qsizetype textLimit = 48 * 1024 * 1024;     // bytes, attributes' values included
constexpr qint64 prologLimit = 512 * 1024;            // bytes
constexpr qsizetype tokenLimit = 1024 * 1024;         // bytes that the parser keeps for later
constexpr float growthLimit = 4;                      // by entities, in all
constexpr unsigned long long freeGrowth = 256 * 1024; // bytes that may come of them all the same
constexpr std::uint32_t textName = 0;                 // "#text" is the first name of every document

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

} // namespace

/// Builds a document from the parser's events. An event that breaks a limit stops the parser.
class XmlBuilder {
public:
    XmlBuilder(QByteArrayList bytes, QByteArrayView charset)
        : charset_(charset), parser_(XML_ParserCreate("UTF-8")),
          reader_(std::move(bytes), charset) {
        document_.names_.push_back("#text");
        qsizetype size = 0;
        for (const QByteArray &piece : reader_.bytes())
            size += piece.size();
        makeRoom(size);
    }

    std::optional<XmlDocument> build() {
        if (!parser_)
            return std::nullopt;
        XML_SetUserData(parser_.get(), this);
        listen();
        XML_SetBillionLaughsAttackProtectionMaximumAmplification(parser_.get(), growthLimit);
        XML_SetBillionLaughsAttackProtectionActivationThreshold(parser_.get(), freeGrowth);
        if (!parseAll())
            return std::nullopt;
        document_.text_.truncate(textEnd_);
        return std::move(document_);
    }

private:
    struct ParserFree {
        void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
    };
    using Parser = std::unique_ptr<XML_ParserStruct, ParserFree>;
    struct OpenElement {
        std::uint32_t node;
        std::uint32_t lastChild = 0;
    };

    void listen() {
        XML_Parser parser = parser_.get();
        XML_SetElementHandler(
            parser,
            [](void *self, const char *name, const char **attributes) {
                static_cast<XmlBuilder *>(self)->beginElement(name, attributes);
            },
            [](void *self, const char *) { static_cast<XmlBuilder *>(self)->endElement(); });
        XML_SetCharacterDataHandler(parser, [](void *self, const char *text, int size) {
            static_cast<XmlBuilder *>(self)->addText(QByteArrayView(text, size));
        });
        // A comment, an instruction or the edge of a CDATA section ends a run of text.
        XML_SetCommentHandler(
            parser, [](void *self, const char *) { static_cast<XmlBuilder *>(self)->endText(); });
        XML_SetProcessingInstructionHandler(parser, [](void *self, const char *, const char *) {
            static_cast<XmlBuilder *>(self)->endText();
        });
        const auto endText = [](void *self) { static_cast<XmlBuilder *>(self)->endText(); };
        XML_SetCdataSectionHandler(parser, endText, endText);
        XML_SetParamEntityParsing(parser, XML_PARAM_ENTITY_PARSING_UNLESS_STANDALONE);
        XML_SetExternalEntityRefHandler(parser, [](XML_Parser asking, const char *context,
                                                   const char *, const char *, const char *) {
            auto *self = static_cast<XmlBuilder *>(XML_GetUserData(asking));
            return context || self->declareEntities(asking) ? 1 : 0;
        });
        XML_SetSkippedEntityHandler(parser, [](void *self, const char *name, int isParameter) {
            if (!isParameter)
                static_cast<XmlBuilder *>(self)->addText(QByteArray('&' + QByteArray(name) + ';'));
        });
    }

    // In pieces: the parser stores the names of a tag before it calls a handler that could stop it.
    // Of the last piece it does not count the lines, which would take a seventh of its time.
    bool parseAll() {
        qint64 fed = 0;
        bool isLast = false;
        while (!isLast) {
            const std::optional<QByteArrayView> piece = reader_.next();
            if (!piece)
                return false;
            isLast = reader_.isAtEnd();
            const bool isPrologTooLong = fed > prologLimit && document_.nodes_.empty();
            if (isPrologTooLong ||
                XML_Parse(parser_.get(), piece->data(), static_cast<int>(piece->size()), isLast) !=
                    XML_STATUS_OK)
                return false;
            fed += piece->size();
            if (!isLast && fed - XML_GetCurrentByteIndex(parser_.get()) > tokenLimit)
                return false;
        }
        return true;
    }

    // In place of an external DTD, which is never loaded. A document may ask for many, and this
    // searches all of it.
    bool declareEntities(XML_Parser asking) {
        if (std::exchange(areEntitiesDeclared_, true))
            return true;
        const Parser parser(XML_ExternalEntityParserCreate(asking, nullptr, "UTF-8"));
        const QByteArray declarations = htmlEntityDeclarations() + otherDeclarations();
        return parser && XML_Parse(parser.get(), declarations.constData(),
                                   static_cast<int>(declarations.size()), 1) == XML_STATUS_OK;
    }

    // The parser silently drops undeclared entities from attributes, so every entity that is used
    // is declared to be its own text. The first declaration of an entity holds: the document's own,
    // then HTML's.
    QByteArray otherDeclarations() const {
        XmlUtf8Reader reader(reader_.bytes(), charset_);
        std::set<QByteArray> names;
        QByteArray text;
        std::optional<QByteArrayView> piece = reader.next();
        for (; piece && !piece->isEmpty() && names.size() < nameLimit; piece = reader.next()) {
            text = text.last(qMin(text.size(), nameSizeLimit)) + *piece;
            static const QByteArrayMatcher begin("&");
            for (qsizetype at = begin.indexIn(text); at >= 0; at = begin.indexIn(text, at + 1)) {
                const QByteArrayView name = asciiName(QByteArrayView(text).sliced(at + 1));
                if (!name.isEmpty() && text.size() > at + 1 + name.size() &&
                    text[at + 1 + name.size()] == ';')
                    names.insert(name.toByteArray());
            }
        }
        QByteArray declarations;
        for (const QByteArray &name : names)
            declarations += "<!ENTITY " + name + " '&#38;#38;" + name + ";'>";
        return declarations;
    }

    static QByteArrayView asciiName(QByteArrayView text) {
        const auto isLetter = [](char c) {
            return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
        };
        const auto isInName = [&](char c) {
            return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
        };
        qsizetype size = 0;
        while (size < qMin(text.size(), nameSizeLimit) &&
               (size == 0 ? isLetter(text[0]) : isInName(text[size])))
            ++size;
        return text.first(size);
    }

    // The parser may still call handlers after this.
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
        if (index >= nameLimit || stored.size() > nameSizeLimit)
            stop();
        nameIndices_.emplace(std::string_view(stored), index);
        return index;
    }

    std::uint32_t addNode(std::uint32_t name) {
        const auto index = static_cast<std::uint32_t>(document_.nodes_.size());
        XmlDocument::Node node{name};
        node.textBegin = textEnd_;
        document_.nodes_.append(node);
        if (!open_.empty()) {
            OpenElement &parent = open_.back();
            if (parent.lastChild)
                document_.nodes_[parent.lastChild].nextSibling = index;
            document_.nodes_[parent.node].hasChildren = true;
            parent.lastChild = index;
        }
        return index;
    }

    void beginElement(const char *name, const char **attributes) {
        endText();
        if (isStopped_)
            return;
        const bool isPrologTooLong =
            document_.nodes_.empty() && XML_GetCurrentByteIndex(parser_.get()) > prologLimit;
        if (isPrologTooLong || open_.size() >= depthLimit || document_.nodes_.size() >= nodeLimit) {
            stop();
            return;
        }
        const std::uint32_t index = addNode(nameIndex(name));
        const qsizetype first = document_.attributes_.size();
        for (; *attributes && !isStopped_; attributes += 2)
            addAttribute(attributes[0], attributes[1]);
        const qsizetype count = document_.attributes_.size() - first;
        if (count > elementAttributeLimit)
            stop();
        XmlDocument::Node &node = document_.nodes_[index];
        node.attributes = static_cast<std::uint32_t>(first);
        node.attributeCount = static_cast<std::uint32_t>(count);
        open_.push_back({index});
    }

    void addAttribute(const char *name, const char *value) {
        const auto begin = static_cast<std::uint32_t>(document_.values_.size());
        document_.values_.append(value);
        const auto end = static_cast<std::uint32_t>(document_.values_.size());
        document_.attributes_.append({nameIndex(name), begin, end});
        if (document_.attributes_.size() > attributeLimit || isTextTooLong(0))
            stop();
    }

    bool isTextTooLong(qsizetype more) const {
        return textEnd_ + document_.values_.size() + more > textLimit;
    }

    void endElement() {
        endText();
        if (isStopped_)
            return;
        document_.nodes_[open_.back().node].textEnd = textEnd_;
        open_.pop_back();
    }

    void addText(QByteArrayView text) {
        if (isTextTooLong(text.size())) {
            stop();
            return;
        }
        // Only a document that grows by its encoding or its entities needs more room than its
        // bytes.
        if (text.size() > textRoom_ - qsizetype{textEnd_})
            makeRoom(2 * textRoom_ + text.size());
        std::memcpy(text_ + textEnd_, text.data(), static_cast<std::size_t>(text.size()));
        textEnd_ += static_cast<std::uint32_t>(text.size());
    }

    void makeRoom(qsizetype size) {
        document_.text_.resize(size);
        text_ = document_.text_.data();
        textRoom_ = size;
    }

    void endText() {
        if (isStopped_)
            return;
        if (std::all_of(text_ + textBegin_, text_ + textEnd_, isSpace)) {
            if (open_.size() >= upperLevels && textBegin_ != textEnd_)
                noteSpace();
            textEnd_ = textBegin_;
            return;
        }
        if (document_.nodes_.size() >= nodeLimit) {
            stop();
            return;
        }
        const std::uint32_t index = addNode(textName);
        document_.nodes_[index].textBegin = textBegin_;
        document_.nodes_[index].textEnd = textEnd_;
        textBegin_ = textEnd_;
    }

    // Between words that are marked up each, the space is all that divides them.
    void noteSpace() {
        if (open_.back().lastChild)
            document_.nodes_[open_.back().lastChild].spaceBehind = text_[textBegin_];
    }

    const QByteArrayView charset_;
    const Parser parser_;
    XmlUtf8Reader reader_;
    XmlDocument document_;
    char *text_ = nullptr; // of the document, which does not share it yet
    qsizetype textRoom_ = 0;
    std::map<std::string_view, std::uint32_t> nameIndices_; // views of names_' bytes
    std::vector<OpenElement> open_;
    bool isStopped_ = false;
    bool areEntitiesDeclared_ = false;
    std::uint32_t textBegin_ = 0; // where the run of text being read began
    std::uint32_t textEnd_ = 0;   // how much of the text is filled
};

std::optional<XmlDocument> XmlDocument::parse(QByteArrayList bytes, QByteArrayView charset) {
    return XmlBuilder(std::move(bytes), charset).build();
}

} // namespace tidebrook
