#pragma once

#include <QString>

namespace tidebrook {

/// How many columns a text may have: those of the terminal that standard output is, 80 at most;
/// 0 where it is no terminal, so that a text stays unwrapped.
int outputColumns();

/// Prints a text as `printText` does. Where standard output is a terminal, a pager shows it:
/// $TIDEBROOK_PAGER, else $PAGER, else "less", which gets "FRX" as $LESS unless this is set. An
/// empty one and "cat" are none. Blocks until the user ends the pager; one that cannot be started
/// is replaced by plain output.
void printPaged(const QString &text);

} // namespace tidebrook
