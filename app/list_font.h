#pragma once

#include "app/app_state.h"

namespace tidebrook {

class Dialog;
class ScreenMenu;

/// Lets Ctrl with plus, minus and 0 choose a bigger, a smaller and the usual size.
void setFontKeys(Dialog &dialog);

/// Takes the size of an entry of the Font Size menus (CommandFontSmall to CommandFontBig), or that
/// of a key, sets it on every list, and stores it; a failure is shown to the user. False for
/// another command.
bool chooseFontSize(AppState &state, int command);

/// Reads the stored size and sets it on every list, soon. A size that no menu has counts as Small.
void readFontSize(AppState &state, QObject *receiver);

/// Which of `fontSizes` is the present one.
int fontSizeIndex(const ListFont &font);

/// Checks the present size in a menu.
void checkFontSize(const ListFont &font, ScreenMenu &menu);

} // namespace tidebrook
