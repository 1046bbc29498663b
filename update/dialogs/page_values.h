#pragma once

#include "app/app_state.h"
#include "app/messages.h"
#include "kit/form.h"
#include "kit/screen_stack.h"
#include "res/strings.h"

#include <QStringList>

namespace tidebrook {

/// Reads the values of a page, and shows them. Until then the page can be neither changed nor
/// saved.
template <class Read, class Show> void loadPage(AppState &state, Form &form, Read read, Show show) {
    form.setEnabled(false);
    state.settings.ask(&form, std::move(read), [&form, show = std::move(show)](const auto &values) {
        form.setEnabled(true);
        show(values);
    });
}

/// Stores the values of a page; shows an error when that fails, or when the device is not there any
/// more.
template <class Save> void savePage(AppState &state, Form &form, Save save) {
    if (!form.isEnabled())
        return;
    const bool isStarted = state.settings.ask(
        &state.stack,
        [&device = state.device, save = std::move(save)] {
            return save() && device.isStillThere() ? 0 : recordProblem(device, fileProblemString);
        },
        [&state](int messageId) {
            if (messageId != 0)
                ShowError(state, messageId);
        });
    if (!isStarted)
        tellProblem(state, memoryProblemString);
}

} // namespace tidebrook
