#include "ui/column_width.h"

#include "kit/list_view.h"
#include "kit/screen_stack.h"

#include <QStyle>

namespace tidebrook {

namespace {

constexpr int portraitRows = 6;
constexpr int landscapeRows = 4;
constexpr int borders = 2; // pixels

} // namespace

void fitColumn(ListView &list, const ScreenStack &stack) {
    const int rowThreshold = ScreenShape(stack.size()) == 1 ? portraitRows : landscapeRows;
    int width = stack.width() - borders;
    if (list.rowCount() > rowThreshold)
        width -= list.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &list);
    list.setColumnWidth(width);
}

} // namespace tidebrook
