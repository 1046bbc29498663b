#pragma once

#include "store/feed_store.h"

#include <QString>

namespace tidebrook {

/// An article as a page of HTML: the channel, the title as a link, the date, the description and
/// the link again. What the feed sent is put in as it is, its markup included.
QString articlePage(const QString &channel, const QString &title, const ArticleDetail &detail);

} // namespace tidebrook
