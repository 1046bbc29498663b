#pragma once

#include "app/app_state.h"
#include "share/article_sharing.h"

#include <QString>

namespace tidebrook {

/// Saves an article or its link to a file that the user names. Returns when the file is named or
/// the user cancels; the file is written after that. A failure shows an error.
void saveArticle(AppState &state, const QString &channel, const QString &title, SaveKind kind);

/// Lets the desktop compose a message with an article's link, soon. A failure shows an error.
void sendArticle(AppState &state, const QString &channel, const QString &title, SendKind kind);

} // namespace tidebrook
