#pragma once

namespace tidebrook {

/// Makes the application's style fit for fingers: entries of menus and drop-down lists, buttons
/// and tabs are at least the touch height. Call it once, after the application was made.
void installTouchStyle();

/// Sets that height, in pixels; menus that are opened later have it.
void setTouchHeight(int pixels);

} // namespace tidebrook
