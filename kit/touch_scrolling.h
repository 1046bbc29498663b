#pragma once

class QAbstractScrollArea;

namespace tidebrook {

/// Lets a finger scroll an area, which goes on when the finger is lifted. A touch that does not
/// move stays a tap.
void scrollByTouch(QAbstractScrollArea &area);

/// True while a finger moves the area, and until the area stands still.
bool isScrollingByTouch(const QAbstractScrollArea &area);

/// Has the area stand still at once.
void stopScrollingByTouch(const QAbstractScrollArea &area);

} // namespace tidebrook
