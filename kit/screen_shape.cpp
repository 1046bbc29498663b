#include "kit/screen_shape.h"

namespace tidebrook {

namespace {

constexpr int shortSide = 240;
constexpr int longSide = 320;

} // namespace

int ScreenShape(const QSize &screen) {
    return (screen.height() > screen.width()) - (screen.height() < screen.width());
}

int templateForShape(int portraitId, const QSize &screen) {
    return ScreenShape(screen) == 1 ? portraitId : portraitId + 1;
}

DialogUnits::DialogUnits(const QSize &screen)
    : screen_(screen), across_(ScreenShape(screen) == 1 ? shortSide : longSide),
      down_(ScreenShape(screen) == 1 ? longSide : shortSide) {}

QRect DialogUnits::rect(const UnitRect &units, const QPoint &origin) const {
    const QPoint topLeft(width(origin.x() + units.x), height(origin.y() + units.y));
    const QPoint end(width(origin.x() + units.x + units.cx),
                     height(origin.y() + units.y + units.cy));
    return {topLeft, QSize(end.x() - topLeft.x(), end.y() - topLeft.y())};
}

} // namespace tidebrook
