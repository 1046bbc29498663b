#include "kit/page/page_document.h"

#include "kit/page/page_source.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QHash>
#include <QPalette>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextList>

#include <algorithm>
#include <cmath>
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
constexpr qreal leastContrast = 3;

qreal atMost(qreal value, qreal low, qreal high) {
    return value > low ? std::min(value, high) : low; // low for NaN
}

qreal luminance(const QColor &colour) {
    const auto linear = [](qreal part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

QColor readableOn(const QColor &base, const QColor &colour) {
    const qreal ground = luminance(base);
    const int target = ground < 0.18 ? 255 : 0; // black and white contrast equally with 0.18
    const auto nearer = [target](int part) { return part + (target - part) / 5; };
    QColor shown(colour.red(), colour.green(), colour.blue());
    for (int step = 0; step < 12; ++step) {
        const qreal other = luminance(shown);
        if ((std::max(ground, other) + 0.05) / (std::min(ground, other) + 0.05) >= leastContrast)
            break;
        shown = QColor(nearer(shown.red()), nearer(shown.green()), nearer(shown.blue()));
    }
    return shown;
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

bool isFixedPitch(const QTextCharFormat &given) {
    const QString families = given.fontFamilies().toStringList().join(u' ');
    return given.fontFixedPitch() || families.contains(u"mono"_s, Qt::CaseInsensitive) ||
           families.contains(u"courier"_s, Qt::CaseInsensitive);
}

class PageBuilder {
public:
    PageBuilder(QTextDocument &document, const PageLook &look) : cursor_(&document), look_(look) {}

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
        const bool isEmpty = !isRule && shownText(given.text()).trimmed().isEmpty();
        if (isEmpty && isBehindEmpty_)
            return;
        isBehindEmpty_ = isEmpty;
        const QTextCharFormat ofBlock = charFormat(given.charFormat());
        if (std::exchange(hasBlock_, true))
            cursor_.insertBlock(blockFormat(given.blockFormat()), ofBlock);
        else
            startWith(blockFormat(given.blockFormat()), ofBlock);
        if (given.textList() != nullptr)
            addToList(*given.textList());
        for (auto part = given.begin(); part != given.end(); ++part) {
            const QTextCharFormat format = part.fragment().charFormat();
            if (format.objectType() == QTextFormat::NoObject)
                cursor_.insertText(shownText(part.fragment().text()), charFormat(format));
        }
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
            format.setFontFamilies(QStringList(u"monospace"_s));
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
    QStringList links_;
    QHash<const QTextList *, QTextList *> lists_;
    bool hasBlock_ = false;
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
    document.setIndentWidth(QFontMetricsF(look.body).horizontalAdvance(u"00. "_s));
    return PageBuilder(document, look).build(parsed);
}

} // namespace tidebrook
