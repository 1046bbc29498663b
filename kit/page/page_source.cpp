#include "kit/page/page_source.h"

#include <QHash>
#include <QRegularExpression>
#include <QUrl>

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

Element elementFor(QStringView name) {
    static const QHash<QString, Element> elements = makeElements();
    return elements.value(name.toString().toLower());
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

bool isReadAttribute(const QString &name) {
    static const QStringList read =
        u"href name id color size style align dir type src alt width height"_s.split(u' ');
    return read.contains(name);
}

// The attributes of an element that stays. The style attribute wins over other sizes.
QString keptAttributes(const QString &element, const Attributes &given) {
    QString kept;
    static const QStringList plain = u"name id color align dir type"_s.split(u' ');
    for (const QString &name : plain) {
        if (given.contains(name))
            kept += u" %1=\"%2\""_s.arg(name, given.value(name));
    }
    if (given.contains(u"href"_s))
        kept += u" href=\"%1%2\""_s.arg(QString(linkMark), given.value(u"href"_s));
    const QString style = sizeStyleFrom(given.value(u"size"_s)) + sizeStyleOf(element) +
                          inPoints(given.value(u"style"_s));
    return style.isEmpty() ? kept : kept + u" style=\"%1\""_s.arg(style);
}

// Pictures of a pixel count readers, or keep others apart.
bool isPixel(const Attributes &picture) {
    return std::ranges::any_of(std::array{u"width"_s, u"height"_s}, [&](const QString &side) {
        const QString pixels = picture.value(side, u"?"_s).trimmed();
        return pixels.startsWith(u'0') || pixels == u"1" || pixels == u"1px";
    });
}

QString fileNameOf(QStringView address) {
    for (const QChar end : {u'?', u'#'}) {
        if (const qsizetype at = address.indexOf(end); at >= 0)
            address.truncate(at);
    }
    while (address.endsWith(u'/'))
        address.chop(1);
    return QUrl::fromPercentEncoding(address.mid(address.lastIndexOf(u'/') + 1).toUtf8());
}

// Data has no address that anything else could open.
QString pictureLink(const Attributes &picture, bool isInLink) {
    const QString source = picture.value(u"src"_s);
    const bool isData = source.trimmed().startsWith(u"data:", Qt::CaseInsensitive);
    QString text = picture.value(u"alt"_s).trimmed();
    if (text.isEmpty() && !isData)
        text = fileNameOf(QStringView(source).trimmed());
    text.replace(u'<', u"&lt;"_s);
    if (text.isEmpty() || source.isEmpty() || isData || isInLink)
        return u' ' + text + u' ';
    return u" <a href=\"%1%2\">%3</a> "_s.arg(QString(linkMark), source, text);
}

class Defuser {
public:
    explicit Defuser(const QString &html) : html_(html) {}

    QString run() {
        while (at_ < html_.size()) {
            const qsizetype next = indexOrEnd(u"<", at_);
            addText(html_.mid(at_, next - at_));
            at_ = next;
            if (at_ < html_.size())
                takeMarkup();
        }
        return result_;
    }

private:
    qsizetype indexOrEnd(QStringView text, qsizetype from) const {
        const qsizetype found = html_.indexOf(text, from, Qt::CaseInsensitive);
        return found < 0 ? html_.size() : found;
    }
    bool isAt(QStringView text) const { return html_.mid(at_).startsWith(text); }
    void skipSpaces() {
        while (at_ < html_.size() && html_[at_].isSpace())
            at_ += 1;
    }
    QStringView takeUntil(QStringView ends) {
        const qsizetype from = at_;
        while (at_ < html_.size() && !html_[at_].isSpace() && !ends.contains(html_[at_]))
            at_ += 1;
        return html_.mid(from, at_ - from);
    }

    void addText(QStringView text) {
        isCellBegun_ = isCellBegun_ || !text.trimmed().isEmpty();
        result_ += text;
    }

    void takeMarkup() {
        if (isAt(u"<!--") && html_.indexOf(u"-->", at_ + 2) >= 0) {
            at_ = html_.indexOf(u"-->", at_ + 2) + 3;
        } else if (isAt(u"<!") || isAt(u"<?")) {
            at_ = indexOrEnd(u">", at_) + 1;
        } else {
            const qsizetype name = isAt(u"</") ? at_ + 2 : at_ + 1;
            if (name < html_.size() && html_[name].isLetter())
                takeTag(name);
            else
                addText(u"&lt;");
            at_ = std::max(at_, name);
        }
    }

    void takeTag(qsizetype nameAt) {
        const bool isEnd = nameAt == at_ + 2;
        at_ = nameAt;
        const QStringView name = takeUntil(u"/>");
        const Element element = elementFor(name);
        const Attributes attributes = takeAttributes();
        switch (element.fate) {
        case Fate::Drop:
            return;
        case Fate::DropWhole:
            return isEnd ? void() : skipContents(name);
        case Fate::Picture:
            if (!isEnd && !isPixel(attributes))
                addText(pictureLink(attributes, isInLink_));
            return;
        case Fate::Cell:
            return isEnd ? endCell() : beginCell(element.name == u"th");
        case Fate::Break:
            endCell();
            return addTag(element.name, isEnd, {});
        case Fate::Keep:
        case Fate::Rename:
            return addElement(element.name, isEnd, attributes);
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

    // An element that is never closed keeps its contents, else the rest of the page would go too.
    void skipContents(QStringView name) {
        const qsizetype end = indexOrEnd(QString(u"</"_s + name), at_);
        if (end < html_.size())
            at_ = indexOrEnd(u">", end) + 1;
    }

    // Of several of the same name the first counts.
    Attributes takeAttributes() {
        Attributes attributes;
        while (at_ < html_.size() && html_[at_] != u'>') {
            const QString name = takeUntil(u"=/>").toString().toLower();
            skipSpaces();
            const bool hasValue = at_ < html_.size() && html_[at_] == u'=';
            const QString value = hasValue ? takeValue() : QString();
            if (!hasValue && isAt(u"/"))
                at_ += 1;
            if (isReadAttribute(name) && !attributes.contains(name))
                attributes.insert(name, value);
        }
        at_ += 1;
        return attributes;
    }

    // The value behind the equals sign, with its quotes escaped.
    QString takeValue() {
        at_ += 1;
        skipSpaces();
        QStringView value;
        if (isAt(u"\"") || isAt(u"'")) {
            const QStringView quote = html_.mid(at_, 1);
            at_ += 1;
            const qsizetype close = html_.indexOf(quote, at_);
            const qsizetype end = close < 0 ? indexOrEnd(u">", at_) : close;
            value = html_.mid(at_, end - at_);
            at_ = close < 0 ? end : end + 1;
        } else {
            value = takeUntil(u">");
        }
        return value.toString().replace(u'"', u"&quot;"_s);
    }

    QStringView html_;
    qsizetype at_ = 0;
    QString result_;
    bool isInLink_ = false;
    bool isInHeading_ = false;    // of a table
    bool isCellBegun_ = true;     // more than blanks stands in the cell
    QHash<QString, int> dropped_; // starts of elements of the cell, whose ends go too
};

} // namespace

QString defusedHtml(const QString &html) { return Defuser(html).run(); }

} // namespace tidebrook
