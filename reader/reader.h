#pragma once

namespace tidebrook {

/// Runs the reader on the user's device root until the user leaves it; the program's exit status,
/// which is 0. `--help` and `--version` are answered at once, and any other argument is refused
/// with a line on standard error and 2: nothing is started then, and no display needed. When the
/// reader of this device runs already, that one comes forward and this one ends, without touching
/// the database or the settings; after 15 seconds, with a line on standard error, where that one
/// does not answer. Without a display it ends without a word, and nothing is
/// made or opened before.
int runReader(int argc, char **argv);

} // namespace tidebrook
