#pragma once

#include "app/app_state.h"
#include "kit/property_sheet.h"
#include "res/ids.h"
#include "update/update_settings.h"

class QAbstractButton;
class QComboBox;

namespace tidebrook {

/// The settings of the Today item: whether it is shown, and how fast its headlines change.
class TodayPage : public PropertyPage {
public:
    explicit TodayPage(AppState &state) : state_(state) {}

    int templateId() const override { return TodayPageTemplate; }
    void initialise(Form &form) override;
    void save() override;

private:
    void show(const TodayPageValues &values);

    AppState &state_;
    Form *form_ = nullptr;
    QAbstractButton *enabled_ = nullptr;
    QComboBox *timer_ = nullptr;
};

} // namespace tidebrook
