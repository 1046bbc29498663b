#pragma once

#include "app/app_state.h"
#include "app/data_jobs.h"
#include "kit/dialog_procedure.h"

#include <QStringList>

namespace tidebrook {

class ListView;

/// The first screen: the categories, from which every other screen is reached. The program ends
/// when it does.
class CategoryListScreen : public DialogProcedure {
public:
    explicit CategoryListScreen(AppState &state) : state_(state) {}

    bool initialise(Dialog &dialog) override;
    void command(int id) override;
    void activated() override;
    bool summoned() override;
    void sized() override;
    void close() override;
    void helpRequested() override;
    std::optional<int> commandOfKey(const QKeyEvent &event) const override;
    void prepareMenu(ScreenMenu &menu) override;

private:
    void refresh();
    void showCategories(const QStringList &names);
    void setColumnWidth();
    bool warnWithoutSelection();

    JobEnd counted(JobEnd end);
    void catchUp();
    void newCategory();
    void updateCategory();
    void renameCategory();
    void exportSelected();
    void endLabelEdit(int row, const QString &text);
    void deleteCategory();
    void handleKey(int key, bool &isTaken);
    void handleTap(int row);
    void openChannels();
    void tellFailedChange(int messageId);
    void openTapped();

    AppState &state_;
    Dialog *dialog_ = nullptr;
    ListView *list_ = nullptr;
    int changes_ = 0;            // asked for, and not stored yet
    bool isRefreshOwed_ = false; // rows could not be shown when they came
    int owedMessage_ = 0;        // of a failure that could not be told when it came
    bool isUnread_ = false;      // the list could not be read; it may be when the user comes back
    bool isTold_ = false;        // of a failure, until the list is refreshed
};

/// Shows the category list, and with it every other screen, until the user leaves it.
int OpenCategoryList(AppState &state);

} // namespace tidebrook
