#include "update/dialogs/auto_update_page.h"

#include "kit/form.h"
#include "res/strings.h"
#include "update/auto_list.h"
#include "update/dialogs/page_values.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QComboBox>
#include <QLabel>
#include <QLocale>
#include <QTime>

namespace tidebrook {

namespace {

enum Mode { Never, Interval, Time };

QStringList hours() {
    constexpr int hoursOfDay = 24;
    QStringList names;
    names.reserve(hoursOfDay);
    for (int hour = 0; hour < hoursOfDay; ++hour)
        names.append(QLocale::system().toString(QTime(hour, 0), QLocale::ShortFormat));
    return names;
}

QString countInWords(std::optional<qsizetype> count) {
    if (!count)
        return resourceString(automaticUnknownString);
    if (*count > 1)
        return resourceString(manyAutomaticString).arg(*count);
    return resourceString(*count == 1 ? oneAutomaticString : noneAutomaticString);
}

} // namespace

void AutoUpdatePage::initialise(Form &form) {
    form_ = &form;
    modes_ = new QButtonGroup(&form);
    for (const int mode : {Never, Interval, Time})
        modes_->addButton(form.control<QAbstractButton>(NeverUpdateButton + mode), mode);
    connect(modes_, &QButtonGroup::idClicked, this, &AutoUpdatePage::choose);
    interval_ = form.control<QComboBox>(UpdateIntervalList);
    time_ = form.control<QComboBox>(UpdateTimeList);
    needsCradle_ = form.control<QAbstractButton>(NeedsCradleBox);
    noRoaming_ = form.control<QAbstractButton>(NoRoamingBox);
    loadPage(
        state_, form, [&settings = state_.device.settings] { return readAutoUpdatePage(settings); },
        [this](const AutoUpdatePageValues &values) { show(values); });
    showCount();
}

// Behind the changes that the user has made, which may be of the list.
void AutoUpdatePage::showCount() {
    auto *label = form_->control<QLabel>(AutoUpdateCountLabel);
    state_.changes.ask(
        form_, [&device = state_.device] { return countAutoUpdated(device.root, device.store); },
        [label](std::optional<qsizetype> count) { label->setText(countInWords(count)); });
}

void AutoUpdatePage::show(const AutoUpdatePageValues &values) {
    if (values.mode) {
        if (QAbstractButton *chosen = modes_->button(*values.mode))
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
    return modes_->checkedId() < 0 ? Time : modes_->checkedId();
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
