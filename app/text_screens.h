#pragma once

#include "app/app_state.h"

namespace tidebrook {

/// Opens the help, at its explanation of the program, until the user goes back.
void showHelp(AppState &state);

/// Opens the box that tells what the program is, until the user goes back.
void showAbout(AppState &state);

} // namespace tidebrook
