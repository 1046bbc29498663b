#pragma once

#include "kit/dialog_procedure.h"

#include <QList>

#include <memory>
#include <vector>

class QStackedWidget;
class QTabBar;

namespace tidebrook {

class Form;

/// What a page of a property sheet does.
class PropertyPage : public QObject {
public:
    /// The portrait template of its controls; the template's title is the page's.
    virtual int templateId() const = 0;
    /// The page is about to be shown for the first time. The form outlives every other call.
    virtual void initialise(Form &form) = 0;
    virtual void save() = 0;
};

/// Pages of settings behind tabs, with the soft keys "Done" and "Cancel". A page is made when it is
/// first shown. "Done" saves the page in front, then the others that were made, and ends the sheet
/// with 1; "Cancel" ends it with 0. To be run with `SettingsSheetTemplate`.
class PropertySheet : public DialogProcedure {
public:
    explicit PropertySheet(std::vector<std::unique_ptr<PropertyPage>> pages)
        : pages_(std::move(pages)) {}

    void command(int id) override;
    void sized() override;

protected:
    void initialise() override;

private:
    void turnTo(int index);
    void apply();

    const std::vector<std::unique_ptr<PropertyPage>> pages_;
    QTabBar *tabs_ = nullptr;
    QStackedWidget *area_ = nullptr;
    QList<Form *> forms_; // of each page; nullptr until it is shown
};

} // namespace tidebrook
