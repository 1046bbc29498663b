#pragma once

namespace tidebrook {

/// Makes the application's style fit for fingers: entries of menus and drop-down lists, buttons
/// and tabs are at least the touch height. The texts of check boxes and radio buttons wrap, and all
/// of their area can be tapped. To be called once.
void installTouchStyle();

/// In pixels; it holds for menus that are opened later.
void setTouchHeight(int pixels);

} // namespace tidebrook
