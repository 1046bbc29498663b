#include "kit/screen_shape.h"

#include <QFont>
#include <QFontInfo>

#include <algorithm>

namespace tidebrook {

namespace {

constexpr QSize tallTemplate(240, 320); // in units
constexpr qreal rounding = 1e-6;
constexpr qreal unitsOfFont = 10; // a thumb needs more than the 12 that templates are drawn for

qreal unitOfFont() {
    static const qreal unit = [] {
        QFont font;
        font.setPointSize(dialogFontPoints);
        return QFontInfo(font).pixelSize() / unitsOfFont;
    }();
    return unit;
}

} // namespace

int ScreenShape(const QSize &screen) {
    return (screen.height() > screen.width()) - (screen.height() < screen.width());
}

int templateForShape(int portraitId, const QSize &screen) {
    return ScreenShape(screen) == 1 ? portraitId : portraitId + 1;
}

DialogUnits::DialogUnits(const QSize &screen) : screen_(screen) {
    const QSize whole = templateSize();
    unit_ = std::min({unitOfFont(), qreal(screen.width()) / whole.width(),
                      qreal(screen.height()) / whole.height()});
}

QSize DialogUnits::templateSize() const {
    return ScreenShape(screen_) == 1 ? tallTemplate : tallTemplate.transposed();
}

int DialogUnits::pixels(int units) const { return qFloor(units * unit_ + rounding); }

QSize DialogUnits::room() const {
    const QSize whole = templateSize();
    return screen_ - QSize(pixels(whole.width()), pixels(whole.height()));
}

QRect DialogUnits::rect(const UnitRect &units, const QPoint &origin) const {
    const QPoint topLeft(pixels(origin.x() + units.x), pixels(origin.y() + units.y));
    const QPoint end(pixels(origin.x() + units.x + units.cx),
                     pixels(origin.y() + units.y + units.cy));
    return {topLeft, QSize(end.x() - topLeft.x(), end.y() - topLeft.y())};
}

} // namespace tidebrook
