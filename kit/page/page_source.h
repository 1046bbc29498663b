#pragma once

#include <QString>

namespace tidebrook {

/// What every link target begins with in the text that `defusedHtml` gives.
constexpr QChar linkMark = u'!';

/// The page's HTML with only those elements and attributes in it that a document can be made of
/// in a time that grows with its length, and that name nothing to load. Tables become lines of
/// their own, and what is left unclosed, nested or misspelt does no harm. The targets of links
/// stand there as they were, behind a `linkMark`, so that an empty one is a link too.
QString defusedHtml(const QString &html);

} // namespace tidebrook
