#include "kit/page/page_source.h"

#include "platform/html/html_pictures.h"
#include "platform/html/html_tokens.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <utility>

namespace tidebrook {

namespace {

using namespace Qt::StringLiterals;

enum class Fate {
    Drop,      // its contents stay
    DropWhole, // its contents go too
    Keep,      // with its attributes
    Break,     // becomes a plain line, as a row of a table does
    Cell,      // becomes a part of such a line
    Picture,   // becomes a link to it
    Rename,    // stays under another name
};

struct Element {
    Fate fate = Fate::Drop;
    QString name;
};

QHash<QString, Element> makeElements() {
    QHash<QString, Element> elements;
    for (const QString &name :
         u"a b strong i em cite var dfn big small u s strike del sub sup tt code kbd samp font "
         u"span "
         "p div center h1 h2 h3 h4 h5 h6 ul ol li dl dt dd blockquote hr br pre"_s.split(u' '))
        elements.insert(name, {Fate::Keep, name});
    for (const QString &name :
         u"table caption thead tbody tfoot tr form fieldset legend option"_s.split(u' '))
        elements.insert(name, {Fate::Break, u"div"_s});
    for (const QString &name : u"td th"_s.split(u' '))
        elements.insert(name, {Fate::Cell, name});
    elements.insert(u"img"_s, {Fate::Picture, u"a"_s});
    for (const QString &name : u"body section article header footer main aside nav figure "
                               "figcaption address"_s.split(u' '))
        elements.insert(name, {Fate::Rename, u"div"_s});
    for (const QString &name : u"script style title"_s.split(u' '))
        elements.insert(name, {Fate::DropWhole, name});
    elements.insert(u"ins"_s, {Fate::Rename, u"u"_s});
    elements.insert(u"menu"_s, {Fate::Rename, u"ul"_s});
    return elements;
}

Element elementFor(const QString &name) {
    static const QHash<QString, Element> elements = makeElements();
    return elements.value(name);
}

// Sizes are all in points, because a document does not nest other units. The levels are those of
// HTML's font element, where the body has 3.
QString sizeStyle(int level) {
    static constexpr std::array<qreal, 7> points{6.3, 7.2, 9, 10.8, 13.5, 18, 21.6};
    return u"font-size:%1pt;"_s.arg(points.at(static_cast<size_t>(std::clamp(level, 1, 7) - 1)));
}

QString sizeStyleOf(const QString &element) {
    static const QHash<QString, int> levels{{u"h1"_s, 6},  {u"h2"_s, 5},   {u"h3"_s, 4},
                                            {u"h4"_s, 3},  {u"h5"_s, 2},   {u"h6"_s, 1},
                                            {u"big"_s, 4}, {u"small"_s, 2}};
    const auto level = levels.constFind(element);
    return level == levels.cend() ? QString() : sizeStyle(*level);
}

QString sizeStyleFrom(const QString &sizeAttribute) {
    const QString size = sizeAttribute.trimmed();
    const bool isRelative = size.startsWith(u'+') || size.startsWith(u'-');
    bool isNumber = false;
    const int level = size.toInt(&isNumber);
    return isNumber ? sizeStyle(std::clamp(level, -9, 9) + (isRelative ? 3 : 0)) : QString();
}

QString inPoints(QString style) {
    static const QRegularExpression other(
        u"(font-size\\s*:\\s*)(\\d{0,5}\\.?\\d{1,5})\\s*(px|r?em|%)"_s,
        QRegularExpression::CaseInsensitiveOption);
    for (auto match = other.match(style); match.hasMatch(); match = other.match(style)) {
        const QString unit = match.captured(3).toLower();
        const qreal points = unit == u"px" ? 0.75 : unit == u"%" ? 0.09 : 9;
        style.replace(match.capturedStart(), match.capturedLength(),
                      QString(match.captured(1) +
                              QString::number(points * match.captured(2).toDouble(), 'f', 2) +
                              u"pt"_s));
    }
    return style;
}

using Attributes = QHash<QString, QString>;

// A value as it can stand between double quotes.
QString quotable(QString value) { return value.replace(u'"', u"&quot;"_s); }

// The attributes of an element that stays. The style attribute wins over other sizes.
QString keptAttributes(const QString &element, const Attributes &given) {
    QString kept;
    static const QStringList plain = u"name id color align dir type"_s.split(u' ');
    for (const QString &name : plain) {
        if (given.contains(name))
            kept += u" %1=\"%2\""_s.arg(name, quotable(given.value(name)));
    }
    if (given.contains(u"href"_s))
        kept += u" href=\"%1%2\""_s.arg(QString(linkMark), quotable(given.value(u"href"_s)));
    const QString style = sizeStyleFrom(given.value(u"size"_s)) + sizeStyleOf(element) +
                          inPoints(quotable(given.value(u"style"_s)));
    return style.isEmpty() ? kept : kept + u" style=\"%1\""_s.arg(style);
}

// Data has no address that anything else could open.
QString pictureLink(const HtmlTag &picture, bool isInLink) {
    const QString source = quotable(picture.attributes.value(u"src"_s));
    QString text = pictureText(picture);
    text.replace(u'<', u"&lt;"_s);
    if (text.isEmpty() || source.isEmpty() || isInlineData(picture) || isInLink)
        return u' ' + text + u' ';
    return u" <a href=\"%1%2\">%3</a> "_s.arg(QString(linkMark), source, text);
}

class Defuser {
public:
    explicit Defuser(const QString &html) : tokens_(html) {}

    QString run() {
        while (tokens_.next()) {
            if (tokens_.kind() == HtmlTokens::Kind::Tag)
                takeTag(tokens_.tag());
            else
                addText(tokens_.text() == u"<" ? QStringView(u"&lt;") : tokens_.text());
        }
        return result_;
    }

private:
    void addText(QStringView text) {
        isCellBegun_ = isCellBegun_ || !text.trimmed().isEmpty();
        result_ += text;
    }

    void takeTag(const HtmlTag &tag) {
        const Element element = elementFor(tag.name);
        switch (element.fate) {
        case Fate::Drop:
            return;
        case Fate::DropWhole:
            return tag.isEnd ? void() : tokens_.skipContents();
        case Fate::Picture:
            if (!tag.isEnd && !isPixel(tag))
                addText(pictureLink(tag, isInLink_));
            return;
        case Fate::Cell:
            return tag.isEnd ? endCell() : beginCell(element.name == u"th");
        case Fate::Break:
            endCell();
            return addTag(element.name, tag.isEnd, {});
        case Fate::Keep:
        case Fate::Rename:
            return addElement(element.name, tag.isEnd, tag.attributes);
        }
    }

    void addTag(const QString &name, bool isEnd, const QString &attributes) {
        isCellBegun_ = true;
        result_ += (isEnd ? u"</"_s : u"<"_s) + name + attributes + u'>';
    }

    void addElement(const QString &name, bool isEnd, const Attributes &attributes) {
        if (name == u"a")
            isInLink_ = !isEnd && attributes.contains(u"href"_s);
        if (name != u"p" && name != u"div")
            return addTag(name, isEnd, isEnd ? QString() : keptAttributes(name, attributes));
        // At its start a paragraph would take the cell from its row's line.
        int &dropped = dropped_[name];
        if (!isEnd && !isCellBegun_)
            ++dropped;
        else if (isEnd && dropped > 0)
            --dropped;
        else
            addTag(name, isEnd, isEnd ? QString() : keptAttributes(name, attributes));
    }

    void beginCell(bool isHeading) {
        endCell();
        result_ += cellMark;
        isInHeading_ = isHeading;
        if (isHeading)
            result_ += u"<b>"_s;
        isCellBegun_ = false;
    }

    void endCell() {
        if (std::exchange(isInHeading_, false))
            result_ += u"</b>"_s;
        isCellBegun_ = true;
        dropped_.clear();
    }

    HtmlTokens tokens_;
    QString result_;
    bool isInLink_ = false;
    bool isInHeading_ = false;    // of a table
    bool isCellBegun_ = true;     // more than blanks stands in the cell
    QHash<QString, int> dropped_; // starts of elements of the cell, whose ends go too
};

} // namespace

QString defusedHtml(const QString &html) { return Defuser(html).run(); }

} // namespace tidebrook
