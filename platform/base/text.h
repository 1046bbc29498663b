#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringView>

namespace tidebrook {

/// The first `capacity` UTF-16 units of a text; one fewer where half a surrogate pair would be
/// left.
QStringView cutText(QStringView text, qsizetype capacity);

/// The first `capacity` bytes of a text in UTF-8, or fewer, so that no character is cut in two.
QByteArrayView cutUtf8(QByteArrayView text, qsizetype capacity);

/// How many UTF-16 units a valid text in UTF-8 has.
qsizetype unitsOfUtf8(QByteArrayView text);

/// What `cutText` leaves of a valid text in UTF-8.
QByteArrayView cutUtf8ToUnits(QByteArrayView text, qsizetype capacity);

/// The text without the blanks (U+0020) and terminators (U+0000) at its end. The first character
/// is never taken, so a text of blanks alone keeps one.
QStringView TrimTrailingBlanks(QStringView text);
QByteArrayView TrimTrailingBlanks(QByteArrayView utf8);

/// The text with a blank in place of every control character, line ends and tabs among them.
QString withoutControls(QString text);

/// The text without the halves of surrogate pairs, as an input field's limit leaves them.
QString withoutHalves(QString text);

/// The text without the characters that show nothing and only allow or forbid a line's end at their
/// place: soft hyphens, blanks and joiners without a width, byte-order marks.
QString withoutSoftBreaks(QString text);

/// The text as it can go to a terminal or into a file's name: with a blank in place of every
/// invisible character that can change how the text around it is read: controls, line and paragraph
/// separators, changes of direction, and characters without a width. Those of `kept` stay, and so
/// do joiners within an emoji.
QString withoutHidden(QString text, QStringView kept = {});

/// Join letters, part them, and give blanks and signs a direction, as in Persian and Hebrew names.
/// They show nothing themselves, and turn no letter round.
inline constexpr QStringView joinersAndMarks = u"\u200C\u200D\u200E\u200F";

/// The text without the characters that XML does not allow, for which readers refuse a document:
/// with a blank in place of a control, and U+FFFD in place of any other.
QString xmlText(QString text);

} // namespace tidebrook
