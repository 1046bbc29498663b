#pragma once

#include "app/base/app_state.h"

#include <functional>

class QComboBox;

namespace tidebrook {

/// Reads the categories, soon, and gives them to `then`; not when the receiver is gone by that
/// time. Where there are none, or they cannot be read, one stands for them that says so.
void readCategories(AppState &state, QObject *receiver,
                    std::function<void(const QStringList &)> then);

/// Selects the first entry that begins with this text, whatever its case.
void selectByBeginning(QComboBox &box, const QString &text);

} // namespace tidebrook
