#pragma once

#include "app/app_state.h"
#include "kit/property_sheet.h"
#include "res/ids.h"
#include "update/update_settings.h"

class QAbstractButton;
class QButtonGroup;
class QComboBox;

namespace tidebrook {

/// The settings of the automatic update.
class AutoUpdatePage : public PropertyPage {
public:
    explicit AutoUpdatePage(AppState &state) : state_(state) {}

    int templateId() const override { return AutoUpdatePageTemplate; }
    void initialise(Form &form) override;
    void save() override;

private:
    void show(const AutoUpdatePageValues &values);
    void choose(int mode);
    void enableControls(int mode);
    int checkedMode() const;
    void showCount();

    AppState &state_;
    Form *form_ = nullptr;
    QButtonGroup *modes_ = nullptr;
    QComboBox *interval_ = nullptr;
    QComboBox *time_ = nullptr;
    QAbstractButton *needsCradle_ = nullptr;
    QAbstractButton *noRoaming_ = nullptr;
};

} // namespace tidebrook
