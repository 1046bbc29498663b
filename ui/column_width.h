#pragma once

#include <QSize>

class QWidget;

namespace tidebrook {

/// How wide a list's rows are: as wide as the screen but for two pixels, and, with more rows than
/// fit without one, the scroll bar.
int listColumnWidth(const QSize &screen, int rowCount, const QWidget &list);

} // namespace tidebrook
