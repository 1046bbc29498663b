#pragma once

#include <QString>
#include <QStringView>

namespace tidebrook {

/// What a text of a statement is.
enum class TextKind { Category = 8, ChannelName = 9, Description = 10, Title = 11 };

/// Capacities in UTF-16 units.
inline constexpr qsizetype categoryCapacity = 40;
inline constexpr qsizetype channelNameCapacity = 50;
inline constexpr qsizetype titleCapacity = 255;
inline constexpr qsizetype linkCapacity = 512;
inline constexpr qsizetype descriptionCapacity = 3000;

/// The quoting rule for text that goes into a statement: single quotes are doubled, carriage
/// returns and byte-order marks dropped. The source is cut to one character more than the kind's
/// capacity (41, 51, 256, 3,001), so that the result may be longer. False, with `destination`
/// unchanged, when the source is null.
bool EscapeSql(QStringView source, QString &destination, TextKind kind);

/// A text without the characters that EscapeSql drops.
QString withoutDropped(QStringView text);

/// A channel's name as it can be stored and listed: on one line, without blanks at its ends, cut to
/// its capacity.
QString storableName(const QString &name);

/// Whether an address can be stored and passed to the downloader.
bool isStorableLink(const QString &link);

/// A name cut to its capacity and escaped; empty for a null text.
QString escapedCategory(const QString &category);
QString escapedChannelName(const QString &name);
QString escapedTitle(const QString &title);

/// The same rule for the texts of a feed, but the result is cut, to `capacity` characters, or to
/// one more where a doubled quote would be halved.
QString escapeFeedText(const QString &source, qsizetype capacity);

} // namespace tidebrook
