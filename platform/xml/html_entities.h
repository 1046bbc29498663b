#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

namespace tidebrook {

/// A DTD's declarations of HTML's named characters, but for those of XML (quot, amp, lt, gt).
QByteArray htmlEntityDeclarations();

/// HTML's text with the characters that its entities stand for. Numbers from 128 to 159 are taken
/// as Windows numbers its letters, since feeds mean that. What is no known entity with its
/// semicolon stays as it is, and a number that is no character becomes U+FFFD.
QString withoutHtmlEntities(QStringView text);

} // namespace tidebrook
