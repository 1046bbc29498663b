#include "share/dialogs/article_handing.h"

#include "app/messages.h"
#include "kit/files/file_dialog.h"
#include "kit/screen_stack.h"
#include "res/strings.h"
#include "share/dialogs/reported_task.h"
#include "store/escape_sql.h"

namespace tidebrook {

namespace {

constexpr int done = 0;

} // namespace

void saveArticle(AppState &state, const QString &channel, const QString &title, SaveKind kind) {
    // The caller's texts may be those of another article when the user has named the file.
    const auto save = [&store = state.device.store, channel, title, kind](const QString &path) {
        if (saveArticleHtml(store, channel, title, path, kind))
            return done;
        ArticleExtract article;
        const bool isThere = store.GetArticleExtract(channel, title, article);
        return isThere ? fileProblemString : unidentifiedProblemString;
    };
    const QString path =
        chooseFileToSave(state.stack, {.title = resourceString(saveString),
                                       .filterName = resourceString(htmlFilterString),
                                       .pattern = QStringLiteral("*.html"),
                                       .name = title,
                                       .pathLimit = titleCapacity - 1});
    if (!path.isNull())
        startReportedTask(state, [save, path] { return save(path); });
}

void sendArticle(AppState &state, const QString &channel, const QString &title, SendKind kind) {
    startReportedTask(state, [&store = state.device.store, channel, title, kind] {
        return sendArticleLink(store, channel, title, kind) ? done : unidentifiedProblemString;
    });
}

} // namespace tidebrook
