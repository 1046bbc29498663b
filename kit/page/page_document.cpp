#include "kit/page/page_document.h"

#include "kit/page/contrast.h"
#include "kit/page/page_source.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QHash>
#include <QPalette>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextList>
#include <QTextOption>

#include <algorithm>
#include <utility>

namespace tidebrook {

namespace {

using namespace Qt::StringLiterals;

constexpr int deepestIndent = 4; // more would leave no width for the text
constexpr qreal smallestPoints = 6;
constexpr qreal biggestPoints = 24;
constexpr qreal bodyPoints = 9;
constexpr qreal highestMargin = 16; // in pixels
constexpr qreal indentPixels = 40;  // by which HTML's quotes and definitions are moved in
constexpr qreal rowGap = 3;         // in pixels, above a row of a table
constexpr int hangingBlanks = 2;
constexpr int tabBlanks = 4;
constexpr qsizetype mostBlanks = 12; // more would leave no width for the rest of a code's line

qreal atMost(qreal value, qreal low, qreal high) {
    return value > low ? std::min(value, high) : low; // low for NaN
}

// Joins runs of empty lines, and removes characters that stand for objects, end frames or override
// the direction of text, and halves of surrogate pairs.
QString shownText(const QString &text) {
    static const QRegularExpression unwanted(
        u"[\\x{0}-\\x{8}\\x{b}-\\x{1f}\\x{7f}-\\x{9f}\\x{fdd0}-\\x{fdef}\\x{fff9}-\\x{fffc}"
        u"\\x{202d}\\x{202e}]"_s);
    static const QRegularExpression emptyLines(u"\\x{2028}{3,}"_s);
    QString shown = text.isValidUtf16() ? text : QString::fromUtf8(text.toUtf8());
    return shown.remove(unwanted).replace(emptyLines, u"\u2028\u2028"_s);
}

QStringList codeFamilies() { return {u"monospace"_s}; }

qreal blankWidth(QFont font) {
    font.setFamilies(codeFamilies());
    return QFontMetricsF(font).horizontalAdvance(u' ');
}

bool isFixedPitch(const QTextCharFormat &given) {
    const QString families = given.fontFamilies().toStringList().join(u' ');
    return given.fontFixedPitch() || families.contains(u"mono"_s, Qt::CaseInsensitive) ||
           families.contains(u"courier"_s, Qt::CaseInsensitive);
}

bool isCodeLine(const QTextBlock &block) { return block.blockFormat().nonBreakableLines(); }

int filledCells(const QString &line) {
    int filled = 0;
    for (const QStringView cell : QStringView(line).split(cellMark))
        filled += cell.trimmed().isEmpty() ? 0 : 1;
    return filled;
}

// A line's text with bars between the cells of a row.
QString cellsShown(QString text, bool isRow, bool isLineStart) {
    static const QRegularExpression mark(u"(?<! ) *+\\x{1f} *"_s);
    static const QRegularExpression first(u"^\\x{1f} *"_s);
    if (isLineStart)
        text.remove(first);
    return text.replace(mark, isRow ? u" | "_s : u" "_s);
}

// By how many blanks the lines are moved in on which a line of code goes on.
qsizetype hangingOf(const QString &line) {
    qsizetype blanks = 0;
    for (const QChar letter : line) {
        if (!letter.isSpace())
            break;
        blanks += letter == u'\t' ? tabBlanks : 1;
    }
    return std::min(blanks, mostBlanks) + hangingBlanks;
}

class PageBuilder {
public:
    PageBuilder(QTextDocument &document, const PageLook &look)
        : cursor_(&document), look_(look), blankWidth_(blankWidth(look.body)) {}

    QStringList build(const QTextDocument &parsed) {
        cursor_.beginEditBlock();
        for (QTextBlock block = parsed.begin(); block.isValid(); block = block.next())
            addBlock(block);
        cursor_.endEditBlock();
        return links_;
    }

private:
    void addBlock(const QTextBlock &given) {
        const bool isRule =
            given.blockFormat().hasProperty(QTextFormat::BlockTrailingHorizontalRulerWidth);
        const QString text = given.text();
        const bool isCode = isCodeLine(given);
        const bool isEmpty = !isRule && shownText(text).trimmed().isEmpty();
        const bool isKept = isCode ? isCodeLine(given.next()) : !isBehindEmpty_;
        if (isEmpty && (text.contains(cellMark) || !isKept))
            return;
        isBehindEmpty_ = isEmpty;
        isRow_ = filledCells(text) > 1;
        QTextBlockFormat format = blockFormat(given.blockFormat());
        if (isCode || isRow_)
            hang(format, text, given.textDirection());
        beginBlock(format, charFormat(given.charFormat()));
        if (given.textList() != nullptr)
            addToList(*given.textList());
        for (auto part = given.begin(); part != given.end(); ++part) {
            if (part.fragment().charFormat().objectType() == QTextFormat::NoObject)
                addText(part.fragment(), part == given.begin(), isCode);
        }
    }

    void beginBlock(const QTextBlockFormat &block, const QTextCharFormat &text) {
        if (std::exchange(hasBlock_, true))
            cursor_.insertBlock(block, text);
        else
            startWith(block, text);
    }

    void addText(const QTextFragment &given, bool isLineStart, bool isCode) {
        const QTextCharFormat format = charFormat(given.charFormat());
        const QString text = shownText(cellsShown(given.text(), isRow_, isLineStart));
        if (!isCode)
            return cursor_.insertText(text, format);
        const QStringList lines = text.split(QChar::LineSeparator);
        for (qsizetype i = 0; i < lines.size(); ++i) {
            if (i > 0)
                cursor_.insertBlock();
            cursor_.insertText(lines[i], format);
        }
    }

    // Moves in the lines on which a line goes on.
    void hang(QTextBlockFormat &format, const QString &text, Qt::LayoutDirection direction) const {
        const auto blanks = static_cast<qreal>(isRow_ ? hangingBlanks : hangingOf(text));
        const qreal width = blanks * blankWidth_;
        format.setTextIndent(-width);
        if (direction == Qt::RightToLeft)
            format.setRightMargin(width);
        else
            format.setLeftMargin(width);
        if (isRow_)
            format.setTopMargin(look_.zoom * rowGap);
    }

    void startWith(const QTextBlockFormat &block, const QTextCharFormat &text) {
        cursor_.setBlockFormat(block);
        cursor_.setBlockCharFormat(text);
    }

    void addToList(const QTextList &given) {
        QTextList *&list = lists_[&given];
        if (list != nullptr) {
            list->add(cursor_.block());
            return;
        }
        QTextListFormat format;
        format.setStyle(std::clamp(given.format().style(), QTextListFormat::ListUpperRoman,
                                   QTextListFormat::ListDisc));
        format.setIndent(std::clamp(given.format().indent(), 1, deepestIndent));
        list = cursor_.createList(format);
    }

    QTextBlockFormat blockFormat(const QTextBlockFormat &given) const {
        QTextBlockFormat format;
        const qreal moved = atMost(given.leftMargin() / indentPixels, 0, deepestIndent);
        const int indent = std::clamp(given.indent(), 0, deepestIndent) + qRound(moved);
        format.setIndent(std::min(indent, deepestIndent));
        format.setTopMargin(look_.zoom * atMost(given.topMargin(), 0, highestMargin));
        format.setBottomMargin(look_.zoom * atMost(given.bottomMargin(), 0, highestMargin));
        format.setAlignment(given.alignment() & Qt::AlignHorizontal_Mask);
        format.setHeadingLevel(std::clamp(given.headingLevel(), 0, 6));
        if (given.hasProperty(QTextFormat::LayoutDirection))
            format.setLayoutDirection(given.layoutDirection());
        if (given.hasProperty(QTextFormat::BlockTrailingHorizontalRulerWidth)) {
            format.setProperty(QTextFormat::BlockTrailingHorizontalRulerWidth,
                               QTextLength(QTextLength::PercentageLength, 100));
            format.setBackground(readableOn(look_.base, Qt::gray)); // the rule's colour
        }
        return format;
    }

    QTextCharFormat charFormat(const QTextCharFormat &given) {
        QTextCharFormat format;
        const bool hasSize = given.hasProperty(QTextFormat::FontPointSize);
        const qreal points = hasSize ? given.fontPointSize() : bodyPoints;
        format.setFontPointSize(look_.zoom * atMost(points, smallestPoints, biggestPoints));
        if (given.fontWeight() >= QFont::DemiBold)
            format.setFontWeight(QFont::Bold);
        format.setFontItalic(given.fontItalic());
        format.setFontUnderline(given.fontUnderline());
        format.setFontStrikeOut(given.fontStrikeOut());
        const QTextCharFormat::VerticalAlignment vertical = given.verticalAlignment();
        if (vertical == QTextCharFormat::AlignSubScript ||
            vertical == QTextCharFormat::AlignSuperScript)
            format.setVerticalAlignment(vertical);
        if (isFixedPitch(given)) {
            format.setFontFixedPitch(true);
            format.setFontFamilies(codeFamilies());
        }
        if (given.isAnchor())
            setAnchor(given, format);
        setColour(given, format);
        return format;
    }

    void setAnchor(const QTextCharFormat &given, QTextCharFormat &format) {
        format.setAnchor(true);
        format.setAnchorNames(given.anchorNames());
        const QString href = given.anchorHref();
        if (!href.startsWith(linkMark))
            return;
        if (links_.isEmpty() || links_.last() != href.mid(1))
            links_.append(href.mid(1));
        format.setAnchorHref(u"link:%1"_s.arg(links_.size() - 1));
    }

    void setColour(const QTextCharFormat &given, QTextCharFormat &format) const {
        if (given.foreground().style() != Qt::SolidPattern)
            return;
        const QColor colour = given.foreground().color();
        const bool isLinkColour = !format.anchorHref().isEmpty() &&
                                  colour == QGuiApplication::palette().color(QPalette::Link);
        format.setForeground(readableOn(look_.base, isLinkColour ? look_.link : colour));
    }

    QTextCursor cursor_;
    const PageLook &look_;
    const qreal blankWidth_; // in code
    QStringList links_;
    QHash<const QTextList *, QTextList *> lists_;
    bool hasBlock_ = false;
    bool isRow_ = false; // the block is one of a table
    bool isBehindEmpty_ = true;
};

} // namespace

QVariant PageDocument::loadResource(int, const QUrl &) { return {}; }

QStringList showPage(QTextDocument &document, const QString &html, const PageLook &look) {
    PageDocument parsed; // without a layout, which hostile pages would keep busy
    parsed.setUndoRedoEnabled(false);
    parsed.setHtml(defusedHtml(html));
    document.clear();
    document.setDefaultFont(look.body);
    QTextOption option = document.defaultTextOption();
    option.setTabStopDistance(tabBlanks * blankWidth(look.body));
    document.setDefaultTextOption(option);
    document.setIndentWidth(QFontMetricsF(look.body).horizontalAdvance(u"00. "_s));
    return PageBuilder(document, look).build(parsed);
}

} // namespace tidebrook
