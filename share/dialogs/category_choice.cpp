#include "share/dialogs/category_choice.h"

#include "app/data_jobs.h"
#include "app/messages.h"
#include "res/strings.h"

#include <optional>

namespace tidebrook {

void readCategories(AppState &state, QObject *receiver,
                    const std::function<void(const QStringList &)> &then) {
    const bool isStarted = state.changes.ask(
        receiver, [&device = state.device] { return listedCategories(device); },
        [&state, then](const std::optional<QStringList> &names) {
            then(!names             ? QStringList()
                 : names->isEmpty() ? QStringList(resourceString(noCategoryString))
                                    : *names);
            if (!names)
                ShowError(state, fileProblemString);
        });
    if (!isStarted) {
        then({});
        tellProblem(state, memoryProblemString);
    }
}

} // namespace tidebrook
