#include "ui/column_width.h"

#include "kit/screen_shape.h"

#include <QStyle>
#include <QWidget>

namespace tidebrook {

namespace {

constexpr int portraitRows = 6;
constexpr int landscapeRows = 4;
constexpr int borders = 2; // pixels

} // namespace

int listColumnWidth(const QSize &screen, int rowCount, const QWidget &list) {
    const int rowThreshold = ScreenShape(screen) == 1 ? portraitRows : landscapeRows;
    const int scrollBar =
        rowCount > rowThreshold
            ? list.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &list)
            : 0;
    return screen.width() - borders - scrollBar;
}

} // namespace tidebrook
