#pragma once

#include "platform/html/readable_text.h"

#include <QString>

namespace tidebrook {

/// A line, with what stands before it, as lines of at most `columns` columns of a terminal; as it
/// is where `columns` is 0 or the line cannot be wrapped. A word that is longer stays whole, so
/// that an address can be copied. What could disturb a terminal has become blanks.
QString wrapped(const ReadableLine &line, int columns);

} // namespace tidebrook
