#pragma once

#include "kit/list_rows.h"

namespace tidebrook {

/// What a screen reader says of a row of the channel or the article list: the name and the counts
/// in words, or the title, the date and whether it is unread.
QString rowSpeech(const ListRow &row);

} // namespace tidebrook
