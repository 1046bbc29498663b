#pragma once

namespace tidebrook {

/// Runs the reader on the user's device root until the user leaves it; the program's exit status,
/// which is always 0. When the reader of this device runs already, that one comes forward and this
/// one ends at once, without touching the database or the settings. Without a display it ends
/// without a word, and nothing is made or opened before.
int runReader(int argc, char **argv);

} // namespace tidebrook
