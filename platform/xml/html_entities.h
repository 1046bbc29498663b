#pragma once

#include <QByteArray>

namespace tidebrook {

/// A DTD's declarations of HTML's named characters, but for those of XML (quot, amp, lt, gt).
QByteArray htmlEntityDeclarations();

} // namespace tidebrook
