#include "platform/html/readable_text.h"

#include "platform/base/text.h"
#include "platform/html/html_pictures.h"
#include "platform/html/html_tokens.h"
#include "platform/xml/html_entities.h"

#include <QHash>

#include <algorithm>
#include <utility>

namespace tidebrook {

namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype deepest = 4; // more marks would leave no width for the text

enum class Gap { None, Line, Paragraph };

enum class Shape {
    Inline,
    Line,      // begins and ends a line
    Paragraph, // the same with an empty line between
    List,
    NumberedList,
    Item,
    Quote,
    Preformatted,
    Row, // of a table, or a part of a table that holds rows
    Cell,
    LineBreak,
    Rule,
    Link,
    Picture,
    Hidden,
};

QHash<QString, Shape> makeShapes() {
    const std::pair<QString, Shape> named[]{
        {u"div section article header footer main aside nav figure figcaption address form "
         "fieldset legend option body center dt dd caption"_s,
         Shape::Line},
        {u"p h1 h2 h3 h4 h5 h6 dl"_s, Shape::Paragraph},
        {u"ul menu"_s, Shape::List},
        {u"ol"_s, Shape::NumberedList},
        {u"li"_s, Shape::Item},
        {u"blockquote"_s, Shape::Quote},
        {u"pre"_s, Shape::Preformatted},
        {u"table thead tbody tfoot tr"_s, Shape::Row},
        {u"td th"_s, Shape::Cell},
        {u"br"_s, Shape::LineBreak},
        {u"hr"_s, Shape::Rule},
        {u"a"_s, Shape::Link},
        {u"img"_s, Shape::Picture},
        {u"script style title"_s, Shape::Hidden}};
    QHash<QString, Shape> shapes;
    for (const auto &[names, shape] : named) {
        for (const QString &name : names.split(u' '))
            shapes.insert(name, shape);
    }
    return shapes;
}

Shape shapeOf(const QString &element) {
    static const QHash<QString, Shape> shapes = makeShapes();
    return shapes.value(element, Shape::Inline);
}

bool isBlank(QChar c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f'; }

// Places of the page itself and scripts lead nowhere.
bool isAddress(const QString &target) {
    return !target.isEmpty() && !target.startsWith(u'#') &&
           !target.startsWith(u"javascript:", Qt::CaseInsensitive);
}

class ReadableBuilder {
public:
    explicit ReadableBuilder(const QString &html) : tokens_(html) {}

    ReadableText run() {
        while (tokens_.next()) {
            if (tokens_.kind() == HtmlTokens::Kind::Tag)
                takeTag(tokens_.tag());
            else
                takeText(withoutSoftBreaks(withoutHtmlEntities(tokens_.text())));
        }
        endLink();
        endLine();
        return std::move(result_);
    }

private:
    void takeTag(const HtmlTag &tag) {
        switch (shapeOf(tag.name)) {
        case Shape::Inline:
            return;
        case Shape::Line:
            return requestGap(Gap::Line);
        case Shape::Paragraph:
            return requestGap(Gap::Paragraph);
        case Shape::List:
        case Shape::NumberedList:
            return takeList(tag);
        case Shape::Item:
            return takeItem(tag.isEnd);
        case Shape::Quote:
            requestGap(Gap::Paragraph);
            quotes_ = std::max(quotes_ + (tag.isEnd ? -1 : 1), qsizetype{0});
            return;
        case Shape::Preformatted:
            requestGap(Gap::Paragraph);
            isPreformatted_ = !tag.isEnd;
            emptyLines_ = 0;
            return;
        case Shape::Row:
            return takeRow(tag.name == u"table");
        case Shape::Cell:
            return tag.isEnd ? void() : beginCell();
        case Shape::LineBreak:
            return requestGap(gap_ == Gap::None ? Gap::Line : Gap::Paragraph);
        case Shape::Rule:
            requestGap(Gap::Paragraph);
            put(u"---");
            return requestGap(Gap::Paragraph);
        case Shape::Link:
            endLink();
            if (!tag.isEnd)
                target_ = withoutHtmlEntities(tag.attributes.value(u"href"_s)).trimmed();
            return;
        case Shape::Picture:
            return takePicture(tag);
        case Shape::Hidden:
            return tag.isEnd ? void() : tokens_.skipContents();
        }
    }

    void takeText(QStringView text) {
        if (!isPreformatted_ && text.trimmed().isEmpty()) { // also &nbsp; alone
            hasBlank_ = hasBlank_ || !text.isEmpty();
            return;
        }
        while (!text.isEmpty()) {
            const bool isGap = isBlank(text.front());
            const auto end = std::find_if(text.begin(), text.end(),
                                          [&](QChar c) { return isBlank(c) != isGap; });
            const QStringView part = text.first(end - text.begin());
            text = text.sliced(part.size());
            if (!isGap)
                put(part);
            else if (isPreformatted_)
                putBlanks(part);
            else
                hasBlank_ = true;
        }
    }

    // Blanks of a preformatted text.
    void putBlanks(QStringView blanks) {
        for (const QChar c : blanks) {
            if (c != u'\n') {
                indent_ += c == u'\t' ? c : QChar(u' ');
                continue;
            }
            emptyLines_ += gap_ == Gap::None ? 0 : 1;
            requestGap(Gap::Line);
            indent_.clear();
        }
    }

    void put(QStringView text) {
        if (gap_ != Gap::None)
            beginLine();
        else if (cells_ > 0)
            line_.text += u" | "_s.repeated(cells_);
        else if (hasBlank_ && !line_.text.isEmpty())
            line_.text += u' ';
        line_.text += std::exchange(indent_, {}) + text;
        cells_ = 0;
        hasBlank_ = false;
        isCellBegun_ = true;
        isRowBegun_ = true;
        isLinkBegun_ = true;
        mark_.clear();
    }

    void requestGap(Gap gap) {
        // An element that begins an item or a cell stands on its line.
        if (mark_.isEmpty() && isCellBegun_)
            gap_ = std::max(gap_, lists_.isEmpty() ? gap : std::min(gap, Gap::Line));
        indent_.clear();
    }

    void beginLine() {
        endLine();
        const bool isInPreformatted = isPreformatted_ && gap_ == Gap::Line;
        if (!result_.lines.isEmpty()) {
            const qsizetype empty =
                isInPreformatted ? emptyLines_ : qsizetype{gap_ == Gap::Paragraph ? 1 : 0};
            result_.lines.resize(result_.lines.size() + empty);
        }
        emptyLines_ = 0;
        gap_ = Gap::None;
        const qsizetype level = std::clamp<qsizetype>(lists_.size(), 1, deepest) - 1;
        const QString before =
            u"> "_s.repeated(std::min(quotes_, deepest)) + u"  "_s.repeated(level);
        const QString within = lists_.isEmpty() ? QString() : u"  "_s;
        line_.lead = before + (mark_.isEmpty() ? within : mark_);
        line_.hanging = before + (mark_.isEmpty() ? within : QString(mark_.size(), u' '));
        line_.isWrappable = !isPreformatted_;
    }

    void endLine() {
        if (!line_.text.isEmpty())
            result_.lines.append(std::exchange(line_, {}));
    }

    // Numbers count from 1; 0 stands for a list without numbers.
    void takeList(const HtmlTag &tag) {
        mark_.clear();
        if (tag.isEnd && !lists_.isEmpty())
            lists_.removeLast();
        requestGap(Gap::Paragraph);
        if (!tag.isEnd)
            lists_.append(tag.name == u"ol" ? 1 : 0);
    }

    void takeItem(bool isEnd) {
        mark_.clear();
        requestGap(Gap::Line);
        if (isEnd)
            return;
        const bool isNumbered = !lists_.isEmpty() && lists_.last() > 0;
        mark_ = isNumbered ? QString(QString::number(lists_.last()++) + u". ") : u"- "_s;
    }

    void takeRow(bool isTable) {
        isCellBegun_ = true;
        isRowBegun_ = false;
        cells_ = 0;
        requestGap(isTable ? Gap::Paragraph : Gap::Line);
    }

    void beginCell() {
        if (isRowBegun_) {
            ++cells_;
            gap_ = Gap::None;
        }
        isCellBegun_ = false;
        hasBlank_ = false;
    }

    void takePicture(const HtmlTag &picture) {
        if (picture.isEnd || isPixel(picture))
            return;
        const QString text =
            withoutSoftBreaks(withoutHtmlEntities(pictureText(picture))).simplified();
        hasBlank_ = true;
        put(text.isEmpty() ? u"[picture]"_s : u"[picture: %1]"_s.arg(text));
        hasBlank_ = true;
    }

    void endLink() {
        const QString target = std::exchange(target_, {});
        if (std::exchange(isLinkBegun_, false) && isAddress(target) && !line_.text.isEmpty()) {
            qsizetype &number = numbers_[target];
            if (number == 0) {
                result_.links.append(target);
                number = result_.links.size();
            }
            line_.text += u" [%1]"_s.arg(number);
        }
    }

    HtmlTokens tokens_;
    ReadableText result_;
    ReadableLine line_;
    Gap gap_ = Gap::Line;      // before the next text
    bool hasBlank_ = false;    // before the next text
    QString indent_;           // of the next text, where it is preformatted
    qsizetype emptyLines_ = 0; // of a preformatted text, before the next text
    bool isPreformatted_ = false;
    qsizetype quotes_ = 0;
    QList<int> lists_;                  // the number of each one's next item
    QString mark_;                      // of the item that is to begin
    qsizetype cells_ = 0;               // how many have begun behind the last text of the row
    bool isRowBegun_ = false;           // with a text
    bool isCellBegun_ = true;           // with a text
    QString target_;                    // of the open link
    bool isLinkBegun_ = false;          // with a text
    QHash<QString, qsizetype> numbers_; // of the links, by their addresses
};

} // namespace

QString ReadableText::joined() const {
    QString text;
    for (const ReadableLine &line : lines)
        text += line.lead + line.text + u'\n';
    return text;
}

ReadableText readableText(const QString &html) { return ReadableBuilder(html).run(); }

} // namespace tidebrook
