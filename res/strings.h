#pragma once

#include <QString>

namespace tidebrook {

/// The text of an entry of the string table; empty when there is no such entry.
QString resourceString(int id);

/// The message for an error code of the system (1000 to 1014); for any other number the one for
/// a problem that nothing is known of.
QString errorMessage(quint32 code);

inline constexpr int wrongUrlString = 27;
inline constexpr int nameExistsString = 34;
inline constexpr int todayItemNameString = 60;

} // namespace tidebrook
