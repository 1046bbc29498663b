#pragma once

#include <QString>
#include <QStringView>

namespace tidebrook {

/// What a text is, where it goes into a statement.
enum class TextKind { Category = 8, ChannelName = 9, Description = 10, Title = 11 };

/// Capacities in UTF-16 units.
inline constexpr qsizetype categoryCapacity = 40;
inline constexpr qsizetype channelNameCapacity = 50;
inline constexpr qsizetype titleCapacity = 255;
inline constexpr qsizetype linkCapacity = 512;
inline constexpr qsizetype descriptionCapacity = 3000;

/// The one quoting rule for text that goes into a statement: single quotes are doubled, carriage
/// returns and byte-order marks dropped. One character more than the kind's capacity is looked
/// at (41, 51, 256, 3,001), and what they become is the result, which so may be longer than the
/// capacity. False, with `destination` untouched, when the source is null.
bool EscapeSql(QStringView source, QString &destination, TextKind kind);

/// A text without the characters that EscapeSql drops: what is stored of it.
QString withoutDropped(QStringView text);

/// The name that somebody gives a channel, as it can be stored and listed: on one line, without
/// blanks at its ends, cut to its capacity.
QString storableName(const QString &name);

/// Whether an address can be stored and handed to the downloader.
bool isStorableLink(const QString &link);

/// A name cut to its capacity and escaped; empty for a null text.
QString escapedCategory(const QString &category);
QString escapedChannelName(const QString &name);
QString escapedTitle(const QString &title);

/// EscapeSql's rule, but cut by what comes out instead of what goes in: ends with the text, or as
/// soon as `capacity` characters or more are out. A doubled quote is never halved, so the result
/// may be one longer. This is the rule for what a feed brings.
QString escapeFeedText(QStringView source, qsizetype capacity);

} // namespace tidebrook
