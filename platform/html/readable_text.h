#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace tidebrook {

/// A line of a readable text.
struct ReadableLine {
    QString lead;    ///< stands before the line: the marks of quotes and lists
    QString hanging; ///< stands before the lines on which it goes on where it is wrapped
    QString text;
    bool isWrappable = true; ///< false in a preformatted text
};

/// HTML as a person reads it without a browser.
struct ReadableText {
    QList<ReadableLine> lines; ///< an empty one stands between paragraphs
    QStringList links;         ///< addresses; "[1]" stands behind the text of the first one's link

    /// The lines with what stands before them, without the addresses.
    QString joined() const;
};

/// The readable text of any HTML, in a time that grows with its length. Paragraphs and items of
/// lists become lines, "- " or a number before each item, "> " before quotes. Rows of a table
/// become lines, with " | " between the cells. Links are numbered, and a picture is
/// "[picture: alt]"; those of one pixel, scripts and styles are left out. Preformatted text keeps
/// its blanks and lines. Characters that could disturb a terminal may be in the result.
ReadableText readableText(const QString &html);

} // namespace tidebrook
