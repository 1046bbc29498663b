#include "ui/update_commands.h"

#include "ui/kit/dialog.h"
#include "ui/kit/menu_bar.h"

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

} // namespace tidebrook
