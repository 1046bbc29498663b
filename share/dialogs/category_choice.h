#pragma once

#include "app/app_state.h"

#include <functional>

class QComboBox;

namespace tidebrook {

/// Reads the categories, soon, and gives them to `then`; not when the receiver is gone by that
/// time. Where there are none, one stands for them that says so. When they cannot be read the user
/// is told, and `then` gets nothing.
void readCategories(AppState &state, QObject *receiver,
                    std::function<void(const QStringList &)> then);

/// Selects the first entry that begins with this text, whatever its case, if there is one.
void selectByBeginning(QComboBox &box, const QString &text);

} // namespace tidebrook
