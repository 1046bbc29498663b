#pragma once

#include <QString>

namespace tidebrook {

/// Every link target in the result of `defusedHtml` begins with it.
constexpr QChar linkMark = u'!';

/// The page's HTML with only those elements and attributes that load nothing, and that a document
/// can be made of in a time that grows with its length. The parts of tables become lines. Unclosed,
/// nested and misspelt elements are allowed. The targets of links are kept behind a `linkMark`, so
/// that an empty one is a link too.
QString defusedHtml(const QString &html);

} // namespace tidebrook
