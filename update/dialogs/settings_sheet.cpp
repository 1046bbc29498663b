#include "update/dialogs/settings_sheet.h"

#include "kit/dialog.h"
#include "kit/property_sheet.h"
#include "update/dialogs/auto_update_page.h"
#include "update/dialogs/today_page.h"

#include <utility>

namespace tidebrook {

void showSettings(AppState &state) {
    if (std::exchange(state.areSettingsShown, true))
        return;
    std::vector<std::unique_ptr<PropertyPage>> pages;
    pages.push_back(std::make_unique<TodayPage>(state));
    pages.push_back(std::make_unique<AutoUpdatePage>(state));
    PropertySheet sheet(std::move(pages));
    RunDialog(SettingsSheetTemplate, state.stack, sheet);
    state.areSettingsShown = false;
}

} // namespace tidebrook
