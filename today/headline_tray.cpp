#include "today/headline_tray.h"

#include "kit/icon.h"
#include "res/strings.h"

#include <QGuiApplication>
#include <QPainter>

#include <algorithm>

namespace tidebrook {

namespace {

constexpr int listedHeadlines = 10;
constexpr int hintedHeadlines = 5;
constexpr int iconSize = 64; // pixels; a tray makes it smaller
constexpr quint32 highestShown = 999;

// A desktop may take a tooltip for markup.
QString plainLine(const Headline &headline) {
    return shownHeadline(headline).replace(u'<', u'‹').replace(u'>', u'›').replace(u'&', u'＆');
}

QPixmap iconOf(const QString &total) {
    QPixmap pixmap = icon("tidebrook", QSize(iconSize, iconSize), QGuiApplication::palette());
    if (total.isEmpty())
        return pixmap;
    QPainter painter(&pixmap);
    QFont font = painter.font();
    font.setBold(true);
    font.setPixelSize(iconSize * (total.size() > 2 ? 2 : 3) / 5);
    painter.setFont(font);
    painter.setRenderHint(QPainter::Antialiasing);
    QRect badge(0, 0, std::max(painter.fontMetrics().horizontalAdvance(total) + 6, iconSize / 2),
                painter.fontMetrics().height());
    badge.moveBottomRight(QPoint(iconSize - 1, iconSize - 1));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xb0, 0x00, 0x20));
    painter.drawRoundedRect(badge, 8, 8);
    painter.setPen(Qt::white);
    painter.drawText(badge, Qt::AlignCenter, total);
    return pixmap;
}

} // namespace

HeadlineTray::HeadlineTray() : menu_(listedHeadlines) { setContextMenu(&menu_); }

void HeadlineTray::setState(const TodayState &state) {
    setTotal(state.total);
    menu_.setState(state);
    QStringList lines{resourceString(programNameString) + u": " +
                      resourceString(todayUnreadString).arg(state.total)};
    for (const Headline &headline : state.headlines.mid(0, hintedHeadlines))
        lines.append(plainLine(headline));
    setToolTip(lines.join(u'\n'));
}

void HeadlineTray::setTotal(quint32 total) {
    QString shown = total > highestShown ? QString::number(highestShown) + u'+'
                    : total > 0          ? QString::number(total)
                                         : QString();
    if (std::exchange(total_, shown) != shown)
        setIcon(iconOf(shown));
}

} // namespace tidebrook

#include "moc_headline_tray.cpp"
