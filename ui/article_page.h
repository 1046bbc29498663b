#pragma once

#include "store/feed_store.h"

#include <QString>

namespace tidebrook {

/// An article as a page of HTML: the channel, the title as a link, the date, the description and
/// the link again. The texts of the feed are inserted unchanged, with their markup.
QString articlePage(const QString &channel, const QString &title, const ArticleExtract &detail);

} // namespace tidebrook
