#include "ui/row_painter.h"

#include "app/app_state.h"
#include "kit/icon.h"
#include "kit/list_view.h"
#include "kit/page/contrast.h"
#include "platform/base/text.h"
#include "store/escape_sql.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>

#include <algorithm>

namespace tidebrook {

namespace {

constexpr int iconMargin = 2; // pixels
constexpr int gap = 4;
constexpr int padding = 1; // pixels between a label and the edge of its row
constexpr int labelLines = 2;

// The colour of the button face could not be read on the highlight in dark themes, so the text
// there has the theme's own colour.
QColor textOn(QPalette::ColorRole ground, const QPalette &palette) {
    switch (ground) {
    case QPalette::Highlight:
        return palette.color(QPalette::HighlightedText);
    case QPalette::Button:
        return palette.color(QPalette::Inactive, QPalette::ButtonText);
    default:
        return readableOn(palette.color(ground), palette.color(QPalette::ButtonText));
    }
}

QFont bold(QFont font) {
    font.setWeight(QFont::Bold);
    return font;
}

// A little smaller than the lists' font: 10, 12 or 14 pixels, where an inch has 96 of them.
QFont detailFont(QFont font) {
    constexpr double pointsPerPixel = 72.0 / 96;
    font.setPointSizeF((font.pointSize() + 1) * pointsPerPixel);
    return font;
}

bool hasUnread(const QString &counts) {
    return !counts.isEmpty() && counts.front().isDigit() && counts.front() != u'0';
}

/// A text in the middle of its place, on as few lines as it needs. The lines that reach into the
/// lower right corner leave that free.
class Label {
public:
    Label(const QRect &place, const QSize &corner, Qt::LayoutDirection direction)
        : place_(place), corner_(corner), direction_(direction) {}

    void paint(QPainter &painter, const QString &text, const QFont &font, int mostLines) const;

private:
    struct Line {
        QRect place;
        QString text;
    };

    QList<Line> split(const QString &text, const QFont &font, int count) const;
    int widthAt(int bottom) const {
        return bottom > place_.height() - corner_.height() ? place_.width() - corner_.width()
                                                           : place_.width();
    }

    const QRect place_;
    const QSize corner_;
    const Qt::LayoutDirection direction_;
};

// The last line has all of the text that is left.
QList<Label::Line> Label::split(const QString &text, const QFont &font, int count) const {
    const int height = QFontMetrics(font).height();
    int top = (place_.height() - count * height) / 2;
    QTextLayout layout(text, font);
    QTextOption wrapping;
    wrapping.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(wrapping);
    layout.beginLayout();
    QList<Line> lines;
    for (; lines.size() < count; top += height) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        const QRect row(place_.left(), place_.top() + top, widthAt(top + height), height);
        line.setLineWidth(row.width());
        const bool isLast = lines.size() + 1 == count;
        const QString part = text.mid(line.textStart(), isLast ? -1 : line.textLength());
        lines.append({row, isLast ? part : part.trimmed()});
    }
    layout.endLayout();
    return lines;
}

void Label::paint(QPainter &painter, const QString &text, const QFont &font, int mostLines) const {
    const QFontMetrics metrics(font);
    const auto fits = [&metrics](const Line &line) {
        return metrics.horizontalAdvance(line.text) <= line.place.width();
    };
    const int most = std::clamp(place_.height() / metrics.height(), 1, mostLines);
    QList<Line> lines = split(text, font, 1);
    for (int count = 2; count <= most && !std::ranges::all_of(lines, fits); ++count)
        lines = split(text, font, count);
    for (const Line &line : std::as_const(lines)) {
        painter.drawText(QStyle::visualRect(direction_, place_, line.place),
                         Qt::AlignLeading | Qt::AlignTop | Qt::TextSingleLine,
                         metrics.elidedText(line.text, Qt::ElideRight, line.place.width()));
    }
}

} // namespace

void RowPainter::paint(QPainter *painter, const QStyleOptionViewItem &option,
                       const QModelIndex &index) const {
    const ListRow row = list().row(index.row());
    const bool isChannel = row.image == ChannelImage;
    painter->save();
    painter->setClipRect(option.rect); // letters can be higher than their font's metrics
    paintGround(*painter, option);
    const QRect iconPlace(option.rect.topLeft() + QPoint(iconMargin, 0), list().imageSize());
    painter->drawPixmap(QStyle::visualRect(option.direction, option.rect, iconPlace).topLeft(),
                        icon(list().image(row.image), iconPlace.size(), option.palette));

    const QFont plain = detailFont(option.font);
    const QFont detail = isChannel && hasUnread(row.detail) ? bold(plain) : plain;
    const QSize detailSize = QFontMetrics(detail).size(Qt::TextSingleLine, row.detail);
    const int labelStart = iconMargin + iconPlace.width() + gap;
    const QRect place = QStyle::visualRect(option.direction, option.rect,
                                           option.rect.adjusted(labelStart, 0, -gap, -1));
    const QRect labelPlace = place.adjusted(0, padding, 0, -padding);
    const QFont label = isChannel || row.image == ReadImage ? option.font : bold(option.font);
    painter->setPen(textOn(groundOf(option), option.palette));
    painter->setFont(label);
    const bool isBig = option.font.pointSize() == fontSizes.back();
    const QSize taken = row.detail.isEmpty() ? QSize(0, 0) : detailSize + QSize(gap, -padding);
    Label(labelPlace, taken, option.direction)
        .paint(*painter, withoutControls(cutText(row.text, titleCapacity).toString()), label,
               isBig ? 1 : labelLines);

    painter->setFont(detail);
    const QRect corner =
        QStyle::alignedRect(option.direction, Qt::AlignRight | Qt::AlignBottom, detailSize, place);
    painter->fillRect(corner, option.palette.brush(groundOf(option)));
    painter->drawText(corner, Qt::AlignTrailing | Qt::AlignBottom | Qt::TextSingleLine, row.detail);
    painter->restore();
}

} // namespace tidebrook

#include "moc_row_painter.cpp"
