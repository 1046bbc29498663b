#include "ui/update_commands.h"

#include "app/messages.h"
#include "kit/dialog.h"
#include "kit/menu_bar.h"
#include "res/strings.h"

namespace tidebrook {

void followUpdates(UpdateJobs &updates, Dialog &dialog, const QList<int> &commands) {
    const auto enable = [&updates, &dialog, commands] {
        for (const int id : commands)
            dialog.menuBar()->enable(id, !updates.isUpdating());
    };
    QObject::connect(&updates, &UpdateJobs::begun, &dialog, enable);
    QObject::connect(&updates, &UpdateJobs::done, &dialog, enable);
    enable();
}

void startUpdate(AppState &state, const QString &category, const std::optional<QString> &channel) {
    UpdateJobs &updates = state.updates;
    const bool isStarted = channel ? updates.startUpdateChannel(category, *channel)
                                   : updates.startUpdateCategory(category);
    if (!isStarted && !updates.isUpdating())
        tellProblem(state, memoryProblemString);
}

} // namespace tidebrook
