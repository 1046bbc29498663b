#pragma once

#include "store/feed_store.h"

#include <QString>

namespace tidebrook {

enum class SaveKind : quint8 { Link = 17, Article = 18 };
enum class SendKind : quint8 { Sms = 15, Email = 16 };

/// Saves an article, or its link alone, as a page of HTML in a file of 65,536 bytes, the rest of
/// which is zeros. The file is replaced whole. False, with the old file unchanged, when there is no
/// such article, or when it cannot be written; then the store's error is 1004. Does not mark the
/// article read. Waits for the disk.
bool saveArticleHtml(FeedStore &store, const QString &channel, const QString &title,
                     const QString &path, SaveKind kind);

/// The same for an article that has been read from the store; false when the file cannot be
/// written.
bool saveArticleHtml(const QString &title, const ArticleExtract &article, const QString &path,
                     SaveKind kind);

/// Opens the desktop's composer with an article's link. False when there is no such article, or no
/// composer.
bool sendArticleLink(FeedStore &store, const QString &channel, const QString &title, SendKind kind);

} // namespace tidebrook
