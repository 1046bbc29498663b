#pragma once

#include <QString>

namespace tidebrook {

/// Every link target in the result of `defusedHtml` begins with it.
constexpr QChar linkMark = u'!';

/// Stands before each cell of a table's row in that result.
constexpr QChar cellMark(0x1f);

/// The page's HTML with only those elements and attributes that load nothing, and that a document
/// can be made of in a time that grows with its length. A row of a table becomes a line, and a
/// picture a link to it, with its alternative text or the name of its file; within a link it is a
/// part of that. Pictures of one pixel are left out. Unclosed, nested and misspelt elements are
/// allowed. The targets of links are kept behind a `linkMark`, so that an empty one is a link too.
QString defusedHtml(const QString &html);

} // namespace tidebrook
