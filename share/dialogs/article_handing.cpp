#include "share/dialogs/article_handing.h"

#include "app/base/messages.h"
#include "app/base/text_screens.h"
#include "res/strings.h"
#include "store/escape_sql.h"
#include "ui/kit/file_dialog.h"

namespace tidebrook {

namespace {

// Does it while the user goes on, and tells when it has failed.
template <class Work> void start(AppState &state, QObject *receiver, Work work, int failureString) {
    const auto tell = [&state, failureString](bool isDone) {
        if (!isDone)
            ShowError(state, failureString);
    };
    const auto errand = [work = std::move(work)](const StopSignal &) { return work(); };
    if (state.errands.run(receiver, errand, tell) == nullptr)
        ShowError(state, memoryProblemString);
}

} // namespace

void saveArticle(AppState &state, QObject *receiver, const QString &channel, const QString &title,
                 SaveKind kind) {
    const FileChoice choice =
        chooseFileToSave(state.stack, {.title = resourceString(saveString),
                                       .filterName = resourceString(htmlFilterString),
                                       .pattern = QStringLiteral("*.html"),
                                       .name = title,
                                       .pathLimit = titleCapacity - 1,
                                       .help = [&state] { showHelp(state); }});
    if (choice.isTooLong)
        return ShowError(state, fileProblemString);
    if (choice.path.isNull())
        return;
    start(
        state, receiver,
        [&store = *state.device.store, channel, title, path = choice.path, kind] {
            return saveArticleHtml(store, channel, title, path, kind);
        },
        fileProblemString);
}

void sendArticle(AppState &state, QObject *receiver, const QString &channel, const QString &title,
                 SendKind kind) {
    start(
        state, receiver,
        [&store = *state.device.store, channel, title, kind] {
            return sendArticleLink(store, channel, title, kind);
        },
        unidentifiedProblemString);
}

} // namespace tidebrook
