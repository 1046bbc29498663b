#pragma once

#include <QByteArray>
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

/// What becomes of a quote at the end of a cut text, of whose doubled form only a half would fit.
enum class HalvedQuote { Kept, Dropped };

/// What is stored of a text of a feed, in UTF-8: the rule's characters are dropped, and the text is
/// cut so that it would have at most `capacity` UTF-16 units with its quotes doubled. The result
/// may refer to the same bytes as the source.
QByteArray storedFeedText(const QByteArray &source, qsizetype capacity, HalvedQuote halved);

} // namespace tidebrook
