#pragma once

#include "app/app_state.h"
#include "share/article_sharing.h"

#include <QString>

namespace tidebrook {

/// Has the user name a file, and saves an article or its link in it. Returns when the file is
/// named, or the user has given up; the file is written after that, and a failure is told.
void saveArticle(AppState &state, const QString &channel, const QString &title, SaveKind kind);

/// Has the desktop compose a message with an article's link, soon. A failure is told.
void sendArticle(AppState &state, const QString &channel, const QString &title, SendKind kind);

} // namespace tidebrook
