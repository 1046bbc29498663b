#pragma once

#include "app/app_state.h"

#include <functional>

namespace tidebrook {

/// Reads the categories, soon, and passes them to `then`, unless the receiver is gone by that time.
/// Without any, "No Category Exist!" stands for them. When they cannot be read, `then` gets an
/// empty list, and an error is shown.
void readCategories(AppState &state, QObject *receiver,
                    const std::function<void(const QStringList &)> &then);

} // namespace tidebrook
