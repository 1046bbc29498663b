#include "update/dialogs/auto_update_page.h"

#include "kit/form.h"
#include "res/strings.h"
#include "update/dialogs/page_values.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLocale>
#include <QTime>

namespace tidebrook {

namespace {

constexpr int modeCount = 3;

enum Mode { Never, Interval, Time };

QStringList hours() {
    constexpr int hoursOfDay = 24;
    QStringList names;
    names.reserve(hoursOfDay);
    for (int hour = 0; hour < hoursOfDay; ++hour)
        names.append(QLocale::system().toString(QTime(hour, 0), QLocale::ShortFormat));
    return names;
}

} // namespace

void AutoUpdatePage::initialise(Form &form) {
    form_ = &form;
    for (int mode = 0; mode < modeCount; ++mode) {
        modes_.append(form.control<QAbstractButton>(NeverUpdateButton + mode));
        connect(modes_.last(), &QAbstractButton::clicked, this, [this, mode] { choose(mode); });
    }
    interval_ = form.control<QComboBox>(UpdateIntervalList);
    time_ = form.control<QComboBox>(UpdateTimeList);
    needsCradle_ = form.control<QAbstractButton>(NeedsCradleBox);
    noRoaming_ = form.control<QAbstractButton>(NoRoamingBox);
    loadPage(
        state_, form, [&settings = state_.device.settings] { return readAutoUpdatePage(settings); },
        [this](const AutoUpdatePageValues &values) { show(values); });
}

void AutoUpdatePage::show(const AutoUpdatePageValues &values) {
    if (values.mode) {
        if (QAbstractButton *chosen = modes_.value(*values.mode))
            chosen->setChecked(true);
        enableControls(*values.mode);
    }
    if (values.interval) {
        interval_->addItems(resourceStrings(firstIntervalString, intervalCount));
        interval_->setCurrentIndex(*values.interval);
    }
    if (values.time) {
        time_->addItems(hours());
        time_->setCurrentIndex(*values.time);
    }
    if (values.needsCradle)
        needsCradle_->setChecked(*values.needsCradle);
    if (values.noRoaming)
        noRoaming_->setChecked(*values.noRoaming);
}

void AutoUpdatePage::choose(int mode) {
    enableControls(mode);
    if (mode == Interval)
        interval_->setFocus();
    else if (mode == Time)
        time_->setFocus();
}

void AutoUpdatePage::enableControls(int mode) {
    interval_->setEnabled(mode == Interval);
    time_->setEnabled(mode != Never && mode != Interval);
    needsCradle_->setEnabled(mode != Never);
    noRoaming_->setEnabled(mode != Never);
}

int AutoUpdatePage::checkedMode() const {
    if (modes_[Never]->isChecked())
        return Never;
    return modes_[Interval]->isChecked() ? Interval : Time;
}

void AutoUpdatePage::save() {
    const AutoUpdatePageValues values{.mode = checkedMode(),
                                      .interval = interval_->currentIndex(),
                                      .time = time_->currentIndex(),
                                      .needsCradle = needsCradle_->isChecked(),
                                      .noRoaming = noRoaming_->isChecked()};
    savePage(state_, *form_, [&store = state_.device.settings, values] {
        return saveAutoUpdatePage(store, values);
    });
}

} // namespace tidebrook
