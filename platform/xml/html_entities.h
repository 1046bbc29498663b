#pragma once

#include <QByteArray>

namespace tidebrook {

/// Declarations of HTML's named characters as a DTD has them, but for those that every XML parser
/// knows (quot, amp, lt, gt).
QByteArray htmlEntityDeclarations();

} // namespace tidebrook
