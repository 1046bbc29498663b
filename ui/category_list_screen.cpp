#include "ui/category_list_screen.h"

#include "app/data_jobs.h"
#include "app/list_font.h"
#include "app/messages.h"
#include "app/text_screens.h"
#include "app/today_taps.h"
#include "kit/dialog.h"
#include "kit/header_bar.h"
#include "kit/input_panel.h"
#include "kit/list_view.h"
#include "kit/screen_menu.h"
#include "kit/screen_stack.h"
#include "res/commands.h"
#include "res/ids.h"
#include "res/strings.h"
#include "share/dialogs/opml_export.h"
#include "ui/channel_list_screen.h"
#include "ui/column_width.h"
#include "ui/update_commands.h"
#include "update/dialogs/settings_sheet.h"

#include <QKeyEvent>

#include <algorithm>

namespace tidebrook {

namespace {

QString newName(const ListView &list) {
    const QString base = resourceString(newCategoryNameString);
    QString name = base;
    for (int counter = 0; list.findRow(name) >= 0; ++counter)
        name = base + QStringLiteral(" (%1)").arg(counter);
    return name;
}

} // namespace

bool CategoryListScreen::initialise(Dialog &dialog) {
    dialog_ = &dialog;
    list_ = dialog.control<ListView>(CategoryListViewControl);
    if (list_ == nullptr || !dialog.makeMenuBar(CategoryListMenuBar))
        return false;
    state_.lists[CategoryScreen] = list_;
    list_->setImages({"category"});
    list_->setLabelLimit(categoryNameLimit);
    list_->setAccessibleName(resourceString(allCategoriesString));
    QObject::connect(list_, &ListView::keyPressed, &dialog,
                     [this](int key, bool &isTaken) { handleKey(key, isTaken); });
    QObject::connect(list_, &ListView::tapped, &dialog, [this](int row) { handleTap(row); });
    QObject::connect(list_, &ListView::labelEdited, &dialog,
                     [this](int row, const QString &text) { endLabelEdit(row, text); });
    QObject::connect(list_, &ListView::labelEditEnded, &dialog, [this] { catchUp(); });
    QObject::connect(&state_.stack.inputPanel(), &InputPanel::changed, &dialog,
                     [this] { dialog_->relayout(); });

    followUpdates(state_, dialog, {CommandUpdateCategory});
    readFontSize(state_, &dialog);
    dialog.makeHeaderBar(resourceString(allCategoriesString));
    dialog.post(CommandRefreshCategories);
    return true;
}

void CategoryListScreen::command(int id) {
    if (id != CommandRefreshCategories) // which is nothing that the user does
        list_->finishEditing();
    switch (id) {
    case CommandUpdateCategory:
        return updateCategory();
    case CommandNewCategory:
        return newCategory();
    case CommandDeleteCategory:
        return deleteCategory();
    case CommandRenameCategory:
        return renameCategory();
    case CommandExportCategory:
        return exportSelected();
    case CommandSettings:
        return showSettings(state_);
    case CommandAbout:
        return showAbout(state_);
    case CommandExit:
        return close();
    case CommandOpenChannels:
        return openTapped();
    case CommandRefreshCategories:
        return refresh();
    default:
        if (chooseFontSize(state_, id))
            dialog_->post(CommandRefreshCategories);
    }
}

void CategoryListScreen::refresh() {
    if (!list_->isEditingLabel())
        list_->setFocus();
    state_.changes.ask(
        dialog_, [&device = state_.device] { return listedCategories(device); },
        [this](const std::optional<QStringList> &names) {
            const bool isTold = std::exchange(isTold_, false);
            if (names)
                showCategories(*names);
            else if (!isTold)
                ShowError(state_, fileProblemString);
            isUnread_ = !names; // behind the box, whose end brings the user back to the screen
            if (state_.tap)
                dialog_->post(CommandOpenChannels);
        });
}

void CategoryListScreen::showCategories(const QStringList &names) {
    // What is being typed stays, and what is not stored yet would be missing from the names.
    if (list_->isEditingLabel() || changes_ > 0) {
        isRefreshOwed_ = true;
        return;
    }
    QList<ListRow> rows;
    rows.reserve(names.size());
    for (const QString &name : names)
        rows.append({name});
    list_->setRows(std::move(rows));
    list_->selectRow(0);
    setColumnWidth();
}

void CategoryListScreen::setColumnWidth() {
    list_->setColumnWidth(listColumnWidth(state_.stack.size(), list_->rowCount(), *list_));
}

bool CategoryListScreen::warnWithoutSelection() {
    if (SelectedRow(list_) >= 0)
        return false;
    ShowMessage(state_, warningString, noCategorySelectedString);
    return true;
}

// The end of a change that the list shows already: the rows that are stored are not shown before.
JobEnd CategoryListScreen::counted(JobEnd end) {
    ++changes_;
    return [this, end = std::move(end)](int messageId) {
        --changes_;
        end(messageId);
        catchUp();
    };
}

// What had to wait while a label was edited, which a box would end, or a change was under way.
void CategoryListScreen::catchUp() {
    if (list_->isEditingLabel() || changes_ > 0)
        return;
    if (std::exchange(isRefreshOwed_, false)) {
        isUnread_ = false; // once is enough
        dialog_->post(CommandRefreshCategories);
    }
    if (const int messageId = std::exchange(owedMessage_, 0); messageId != 0) {
        isTold_ = true;
        ShowError(state_, messageId);
    }
}

void CategoryListScreen::updateCategory() {
    if (!warnWithoutSelection())
        startUpdate(state_, list_->rowText(SelectedRow(list_)));
}

void CategoryListScreen::newCategory() {
    const QString name = newName(*list_);
    list_->insertRow(0, {name});
    setColumnWidth();
    list_->editLabel(0);
    const JobEnd end = counted([this, name](int messageId) {
        if (messageId == 0)
            return;
        list_->cancelEditing();
        if (const int row = list_->findRow(name); row >= 0)
            list_->removeRow(row);
        tellFailedChange(messageId);
    });
    const auto add = [name](LockedSubscriptions &subscriptions) {
        return subscriptions.addCategory(name);
    };
    if (!startChange(state_, dialog_, add, end))
        end(fileProblemString);
}

void CategoryListScreen::exportSelected() {
    if (!warnWithoutSelection())
        exportCategory(state_, list_->rowText(SelectedRow(list_)));
}

void CategoryListScreen::renameCategory() {
    if (!warnWithoutSelection())
        list_->editLabel(SelectedRow(list_));
}

void CategoryListScreen::endLabelEdit(int row, const QString &text) {
    if (text.isEmpty())
        return;
    const QString name = categoryName(text);
    const int owner = list_->findRow(name);
    if (owner == row)
        return;
    if (owner >= 0) {
        ShowMessage(state_, warningString, nameExistsString);
        return;
    }
    const QString old = list_->rowText(row);
    list_->setRowText(row, name);
    const JobEnd end = counted([this](int messageId) {
        isRefreshOwed_ = true;
        tellFailedChange(messageId);
    });
    const auto rename = [old, name](LockedSubscriptions &subscriptions) {
        return subscriptions.RenameCategory(old, name);
    };
    if (!startChange(state_, dialog_, rename, end))
        end(fileProblemString);
}

void CategoryListScreen::deleteCategory() {
    const int row = SelectedRow(list_);
    if (row < 0)
        return;
    const QString name = list_->rowText(row);
    if (!askUser(state_, confirmDeletionString, deleteCategoryString))
        return;
    const int asked = list_->findRow(name); // the rows may have changed behind the box
    if (asked < 0)
        return;
    // At once, whatever is at work; the row comes back if it turns out that it cannot be.
    list_->removeRow(asked);
    list_->selectRow(asked);
    setColumnWidth();
    const JobEnd end = counted([this](int messageId) { tellFailedChange(messageId); });
    const auto erase = [name](LockedSubscriptions &subscriptions) {
        return subscriptions.deleteCategory(name);
    };
    if (!startChange(state_, dialog_, erase, end))
        end(fileProblemString);
}

// Once the change is counted as over; the list then shows again what is stored.
void CategoryListScreen::tellFailedChange(int messageId) {
    isRefreshOwed_ = isRefreshOwed_ || messageId != 0;
    owedMessage_ = messageId != 0 ? messageId : owedMessage_;
}

void CategoryListScreen::handleKey(int key, bool &isTaken) {
    if (key != Qt::Key_Return && key != Qt::Key_Enter)
        return;
    isTaken = true;
    state_.currentCategory = SelectedRow(list_);
    if (!warnWithoutSelection())
        openChannels();
}

void CategoryListScreen::handleTap(int row) {
    state_.currentCategory = row;
    if (row < 0)
        list_->selectRow(0);
    else
        openChannels();
}

void CategoryListScreen::openChannels() {
    // What was added, renamed or deleted since they were read counts.
    state_.categories = list_->rowTexts();
    ChannelListScreen screen(state_);
    if (RunDialog(ListTemplate, state_.stack, screen) == 1)
        dialog_->post(CommandRefreshCategories);
}

void CategoryListScreen::activated() {
    if (std::exchange(isUnread_, false))
        dialog_->post(CommandRefreshCategories);
    lookForTodayTap(state_);
    state_.stack.inputPanel().putDown();
}

bool CategoryListScreen::summoned() {
    const bool isListed = state_.tap && list_->findRow(state_.tap->category) >= 0;
    dialog_->post(isListed ? CommandOpenChannels : CommandRefreshCategories);
    return true;
}

void CategoryListScreen::openTapped() {
    if (!followTodayTap(state_))
        return;
    if (list_->findRow(state_.todayCategory) >= 0)
        openChannels();
    else
        forgetTodayTap(state_); // its category has gone since
}

void CategoryListScreen::sized() {
    const DialogUnits units = state_.stack.units();
    const int covered = state_.stack.inputPanel().coveredHeight();
    if (covered > units.height(menuBarUnits)) {
        QRect place = list_->geometry();
        place.setBottom(std::max(place.top(), units.screen().height() - covered - 1));
        list_->setGeometry(place);
        list_->scrollTo(list_->currentIndex());
    }
    setColumnWidth();
}

void CategoryListScreen::close() {
    list_->finishEditing();
    state_.lists = {};
    dialog_->end(0);
}

void CategoryListScreen::helpRequested() { showHelp(state_); }

std::optional<int> CategoryListScreen::commandOfKey(const QKeyEvent &event) const {
    switch (event.key()) {
    case Qt::Key_F2:
        return CommandRenameCategory;
    case Qt::Key_F5:
        return CommandUpdateCategory;
    case Qt::Key_Delete:
        return CommandDeleteCategory;
    default:
        return std::nullopt;
    }
}

void CategoryListScreen::prepareMenu(ScreenMenu &menu) { checkFontSize(state_, menu); }

int OpenCategoryList(AppState &state) {
    CategoryListScreen screen(state);
    return RunDialog(CategoryListTemplate, state.stack, screen);
}

} // namespace tidebrook
