#include "share/dialogs/category_choice.h"

#include "res/strings.h"

#include <QComboBox>

namespace tidebrook {

void readCategories(AppState &state, QObject *receiver,
                    std::function<void(const QStringList &)> then) {
    state.changes.ask(
        receiver,
        [&store = state.device.categoryStore] {
            return store.listedCategories().value_or(QStringList());
        },
        [then = std::move(then)](const QStringList &names) {
            then(names.isEmpty() ? QStringList(resourceString(noCategoryString)) : names);
        });
}

void selectByBeginning(QComboBox &box, const QString &text) {
    box.setCurrentIndex(box.findText(text, Qt::MatchStartsWith));
}

} // namespace tidebrook
