#pragma once

#include "app/app_state.h"
#include "app/data_jobs.h"
#include "kit/dialog_procedure.h"

#include <QStringList>

namespace tidebrook {

class ListView;

/// The first screen: the categories. The program ends with it.
class CategoryListScreen : public DialogProcedure {
public:
    explicit CategoryListScreen(AppState &state) : state_(state) {}

    void command(int id) override;
    void activated() override;
    bool summoned() override;
    void sized() override;
    void close() override;
    void prepareMenu(ScreenMenu &menu) override;

private:
    void initialise() override;
    void refresh();
    void showCategories(const QStringList &names);
    void follow();
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
    void reportFailure(int messageId);
    void openTapped();

    AppState &state_;
    ListView *list_ = nullptr;
    int changes_ = 0;             // begun, and not stored yet
    bool isRefreshOwed_ = false;  // the stored rows could not be shown when they were read
    bool isFollowOwed_ = false;   // what was noticed could not be followed at the time
    int owedMessage_ = 0;         // of a failure that could not be shown when it came
    bool isUnread_ = false;       // reading failed; it is tried again when the user comes back
    bool isFailureShown_ = false; // until the list is refreshed
};

/// Shows the category list, and with it every other screen, until the user leaves it.
int OpenCategoryList(AppState &state);

} // namespace tidebrook
