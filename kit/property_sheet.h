#pragma once

#include "kit/dialog_procedure.h"

#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class QStackedWidget;
class QTabBar;

namespace tidebrook {

class Form;

/// What a page of a property sheet does.
class PropertyPage {
public:
    PropertyPage() = default;
    virtual ~PropertyPage() = default;
    PropertyPage(const PropertyPage &) = delete;
    PropertyPage &operator=(const PropertyPage &) = delete;

    /// The portrait template of its controls; the template's title is the page's.
    virtual int templateId() const = 0;
    /// The page was made, when it was to be seen for the first time. The form outlives every
    /// other call.
    virtual void initialise(Form &form) = 0;
    /// The user is done with the sheet.
    virtual void save() = 0;
};

/// Pages of settings behind tabs, with the soft keys "Done" and "Cancel". A page is made when it is
/// first seen. "Done" saves the page that is on top, then the others that were made, and ends the
/// sheet with 1; "Cancel" ends it with 0.
class PropertySheet : public DialogProcedure {
public:
    /// `help` is called when the user asks for help. To be run with `SettingsSheetTemplate`.
    PropertySheet(std::vector<std::unique_ptr<PropertyPage>> pages, std::function<void()> help);

    bool initialise(Dialog &dialog) override;
    void command(int id) override;
    void sized() override;
    void close() override;
    void helpRequested() override { help_(); }
    std::optional<int> backCommand() const override;
    /// Enter is "Done"; Ctrl+Tab and Ctrl+Shift+Tab turn to the next and the previous page.
    std::optional<int> commandOfKey(const QKeyEvent &event) const override;

private:
    void turnTo(int index);
    void apply();

    const std::vector<std::unique_ptr<PropertyPage>> pages_;
    const std::function<void()> help_;
    Dialog *dialog_ = nullptr;
    QTabBar *tabs_ = nullptr;
    QStackedWidget *area_ = nullptr;
    QList<Form *> forms_; // of each page; nullptr while it was not seen
};

} // namespace tidebrook
