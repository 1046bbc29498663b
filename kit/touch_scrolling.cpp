#include "kit/touch_scrolling.h"

#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QScroller>

namespace tidebrook {

void scrollByTouch(QAbstractScrollArea &area) {
    if (auto *view = qobject_cast<QAbstractItemView *>(&area))
        view->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    QScroller::grabGesture(area.viewport(), QScroller::TouchGesture);
    QScrollerProperties properties = QScroller::scroller(area.viewport())->scrollerProperties();
    properties.setScrollMetric(QScrollerProperties::HorizontalOvershootPolicy,
                               QScrollerProperties::OvershootAlwaysOff);
    properties.setScrollMetric(QScrollerProperties::VerticalOvershootPolicy,
                               QScrollerProperties::OvershootAlwaysOff);
    QScroller::scroller(area.viewport())->setScrollerProperties(properties);
}

bool isScrollingByTouch(const QAbstractScrollArea &area) {
    if (!QScroller::hasScroller(area.viewport()))
        return false;
    const QScroller::State state = QScroller::scroller(area.viewport())->state();
    return state == QScroller::Dragging || state == QScroller::Scrolling;
}

void stopScrollingByTouch(const QAbstractScrollArea &area) {
    if (isScrollingByTouch(area))
        QScroller::scroller(area.viewport())->stop();
}

} // namespace tidebrook
