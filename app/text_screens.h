#pragma once

namespace tidebrook {

class ScreenStack;

/// Opens the help, at its explanation of the program, until the user goes back.
void showHelp(ScreenStack &stack);

/// Opens the box that says what the program is, until the user goes back.
void showAbout(ScreenStack &stack);

} // namespace tidebrook
