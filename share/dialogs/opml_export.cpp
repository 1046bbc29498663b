#include "share/dialogs/opml_export.h"

#include "app/messages.h"
#include "kit/files/file_dialog.h"
#include "res/strings.h"
#include "share/dialogs/reported_task.h"
#include "share/opml_writer.h"
#include "store/escape_sql.h"

#include <memory>
#include <semaphore>

namespace tidebrook {

namespace {

QString chooseFile(AppState &state, int titleId, const QString &name, qsizetype nameBuffer) {
    return chooseFileToSave(state.stack, {.title = resourceString(titleId),
                                          .filterName = resourceString(opmlFilterString),
                                          .pattern = QStringLiteral("*.opml"),
                                          .name = name,
                                          .pathLimit = nameBuffer - 1});
}

// The writing begins after the changes that the user made before, but no later change waits for it.
void writeInTurn(AppState &state, const QString &category, const QString &channel,
                 const QString &path) {
    if (path.isNull())
        return;
    const auto turn = std::make_shared<std::binary_semaphore>(0);
    if (!state.changes.tell([turn] { turn->release(); }))
        turn->release();
    startReportedTask(state, [&store = state.device.store, category, channel, path, turn] {
        turn->acquire();
        if (exportOpml(store, category, channel, path))
            return 0;
        return opmlOf(store, category, channel) ? fileProblemString : databaseProblemString;
    });
}

} // namespace

void exportCategory(AppState &state, const QString &category) {
    writeInTurn(state, category, {},
                chooseFile(state, exportCategoryString, category, categoryCapacity));
}

void exportChannel(AppState &state, const QString &category, const QString &channel) {
    writeInTurn(state, category, channel,
                chooseFile(state, exportChannelString, channel, channelNameCapacity));
}

} // namespace tidebrook
