#pragma once

class QWindow;

namespace tidebrook {

/// Mends what Qt makes of touches for the mouse, in this window:
/// - It reaches the window only when the touch itself has been dealt with. A dialog that it opens
///   would else run in the middle of the touch, and Qt would take the moves of later fingers for
///   those of the first one, so that no list of the dialog could be scrolled.
/// - Two taps at the same place are a double click only within the time of one.
void handleTouches(QWindow &window);

} // namespace tidebrook
