#include "ui/column_width.h"

#include "kit/list_view.h"
#include "kit/screen_stack.h"

#include <QStyle>

namespace tidebrook {

namespace {

constexpr int borders = 2; // pixels

} // namespace

void fitColumn(ListView &list, const ScreenStack &stack) {
    const int rowThreshold = list.height() / list.rowHeight(); // 6 or 4 on the smallest screens
    int width = stack.width() - borders;
    if (list.rowCount() > rowThreshold)
        width -= list.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &list);
    list.setColumnWidth(width);
}

} // namespace tidebrook
