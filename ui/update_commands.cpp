#include "ui/update_commands.h"

#include "app/messages.h"
#include "kit/dialog.h"
#include "kit/menu_bar.h"
#include "res/strings.h"

namespace tidebrook {

void followUpdates(AppState &state, Dialog &dialog, std::initializer_list<int> commands) {
    const auto enable = [&state, &dialog, ids = QList<int>(commands)] {
        for (const int id : ids)
            dialog.menuBar()->enable(id, !state.updates.isUpdating());
    };
    QObject::connect(&state.updates, &UpdateJobs::begun, &dialog, enable);
    QObject::connect(&state.updates, &UpdateJobs::done, &dialog, enable);
    enable();
}

void startUpdate(AppState &state, const QString &category, const std::optional<QString> &channel) {
    UpdateJobs &updates = state.updates;
    const bool isStarted = channel ? updates.startUpdateChannel(category, *channel)
                                   : updates.startUpdateCategory(category);
    if (!isStarted && !updates.isUpdating())
        tellProblem(state, unidentifiedProblemString);
}

} // namespace tidebrook
