#pragma once

class QAbstractScrollArea;

namespace tidebrook {

/// Lets an area be scrolled with a finger: it follows the finger, goes on when that is lifted,
/// and comes to rest. A touch that does not move stays a tap.
void scrollByTouch(QAbstractScrollArea &area);

/// True while a finger moves the area, and while it comes to rest afterwards.
bool isScrollingByTouch(const QAbstractScrollArea &area);

} // namespace tidebrook
