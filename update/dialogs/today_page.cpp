#include "update/dialogs/today_page.h"

#include "kit/form.h"
#include "res/strings.h"
#include "update/dialogs/page_values.h"

#include <QAbstractButton>
#include <QComboBox>

namespace tidebrook {

void TodayPage::initialise(Form &form) {
    form_ = &form;
    enabled_ = form.control<QAbstractButton>(TodayEnabledBox);
    timer_ = form.control<QComboBox>(TodayTimerList);
    connect(enabled_, &QAbstractButton::toggled, timer_, &QWidget::setEnabled);
    loadPage(
        state_, form,
        [&device = state_.device] { return readTodayPage(device.settings, device.todayItemKey); },
        [this](const TodayPageValues &values) { show(values); });
}

void TodayPage::show(const TodayPageValues &values) {
    enabled_->setChecked(values.isEnabled);
    timer_->setEnabled(values.isEnabled);
    if (!values.timer)
        return;
    timer_->addItems(resourceStrings(firstSpeedString, speedCount));
    timer_->setCurrentIndex(*values.timer);
}

void TodayPage::save() {
    const TodayPageValues values{.isEnabled = enabled_->isChecked(),
                                 .timer = timer_->currentIndex()};
    savePage(state_, *form_, [&device = state_.device, values] {
        return saveTodayPage(device.root, device.settings, device.todayItemKey, values);
    });
}

} // namespace tidebrook
