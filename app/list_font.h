#pragma once

#include "app/app_state.h"

namespace tidebrook {

class ScreenMenu;

/// Makes the lists' font for `AppState::fontSize` and sets it on every list that is open.
void applyListFont(AppState &state);

/// Takes the size of an entry of the Font Size menus (CommandFontSmall to CommandFontBig), sets it
/// on every list, and stores it; the user is told where that fails. False for another command.
bool chooseFontSize(AppState &state, int command);

/// Reads the stored size and sets it on every list, soon. A size that no menu has counts as Small.
void readFontSize(AppState &state, QObject *receiver);

/// Which of `fontSizes` is the present one.
int fontSizeIndex(const AppState &state);

/// Checks the present size in a menu.
void checkFontSize(const AppState &state, ScreenMenu &menu);

} // namespace tidebrook
