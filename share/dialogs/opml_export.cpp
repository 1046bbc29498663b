#include "share/dialogs/opml_export.h"

#include "app/base/messages.h"
#include "app/base/text_screens.h"
#include "res/strings.h"
#include "share/opml_writer.h"
#include "store/escape_sql.h"
#include "ui/kit/file_dialog.h"

namespace tidebrook {

namespace {

FileChoice chooseFile(AppState &state, int titleId, const QString &name, qsizetype nameBuffer) {
    return chooseFileToSave(state.stack, {.title = resourceString(titleId),
                                          .filterName = resourceString(opmlFilterString),
                                          .pattern = QStringLiteral("*.opml"),
                                          .name = name,
                                          .pathLimit = nameBuffer - 1,
                                          .help = [&state] { showHelp(state); }});
}

// In its turn, so that it has what the user has changed before.
void write(AppState &state, QObject *receiver, const QString &category, const QString &channel,
           const FileChoice &choice) {
    if (choice.isTooLong)
        return ShowError(state, fileProblemString);
    if (choice.path.isNull())
        return;
    state.changes.ask(
        receiver,
        [&store = *state.device.store, category, channel, path = choice.path] {
            return exportOpml(store, category, channel, path);
        },
        [&state](bool isWritten) {
            if (!isWritten)
                ShowError(state, fileProblemString);
        });
}

} // namespace

void exportCategory(AppState &state, QObject *receiver, const QString &category) {
    write(state, receiver, category, {},
          chooseFile(state, exportCategoryString, category, categoryCapacity));
}

void exportChannel(AppState &state, QObject *receiver, const QString &category,
                   const QString &channel) {
    write(state, receiver, category, channel,
          chooseFile(state, exportChannelString, channel, channelNameCapacity));
}

} // namespace tidebrook
