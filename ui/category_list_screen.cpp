#include "ui/category_list_screen.h"

#include "app/data_jobs.h"
#include "app/list_font.h"
#include "app/messages.h"
#include "app/outside_changes.h"
#include "app/text_screens.h"
#include "app/today_taps.h"
#include "kit/dialog.h"
#include "kit/header_bar.h"
#include "kit/keys.h"
#include "kit/list_view.h"
#include "kit/menu_bar.h"
#include "kit/screen_menu.h"
#include "kit/screen_stack.h"
#include "res/commands.h"
#include "res/strings.h"
#include "share/dialogs/opml_export.h"
#include "ui/channel_list_screen.h"
#include "ui/column_width.h"
#include "ui/kept_place.h"
#include "ui/update_commands.h"
#include "update/dialogs/settings_sheet.h"

#include <QGuiApplication>
#include <QInputMethod>

#include <algorithm>

namespace tidebrook {

namespace {

QList<ListRow> rowsOf(const QStringList &names) {
    QList<ListRow> rows;
    rows.reserve(names.size());
    for (const QString &name : names)
        rows.append({name});
    return rows;
}

// A new category is the first one in the list before it is the last one in store.
bool areSame(QStringList names, QStringList others) {
    names.sort();
    others.sort();
    return names == others;
}

// The height of the window's lower part that an on-screen keyboard covers, in pixels.
int coveredHeight(const QWidget &window) {
    const QInputMethod *panel = QGuiApplication::inputMethod();
    if (!panel->isVisible() || panel->keyboardRectangle().isEmpty())
        return 0;
    const int top = static_cast<int>(panel->keyboardRectangle().top());
    return std::clamp(window.height() - top, 0, window.height());
}

} // namespace

void CategoryListScreen::initialise() {
    list_ = dialog().control<ListView>(CategoryListViewControl);
    state_.lists[CategoryScreen] = list_;
    list_->setImages({"category"});
    list_->setLabelLimit(categoryNameLimit);
    list_->setAccessibleName(resourceString(allCategoriesString));
    connect(list_, &ListView::keyPressed, this, &CategoryListScreen::handleKey);
    connect(list_, &ListView::tapped, this, &CategoryListScreen::handleTap);
    connect(list_, &ListView::labelEdited, this, &CategoryListScreen::endLabelEdit);
    connect(list_, &ListView::labelEditEnded, this, &CategoryListScreen::catchUp);
    connect(&OutsideChanges::of(state_), &OutsideChanges::noticed, this,
            &CategoryListScreen::follow);
    const QInputMethod *panel = QGuiApplication::inputMethod();
    connect(panel, &QInputMethod::visibleChanged, &dialog(), &Dialog::relayout);
    connect(panel, &QInputMethod::keyboardRectangleChanged, &dialog(), &Dialog::relayout);

    dialog().makeMenuBar(CategoryListMenuBar);
    list_->setHasMenu(true);
    connect(list_, &ListView::menuWanted, dialog().menuBar(),
            qOverload<const QRect &>(&MenuBar::openMenu));
    dialog().headerBar()->setCaption(resourceString(allCategoriesString));
    setFontKeys(dialog());
    dialog().setKey(Qt::CTRL | Qt::Key_W, CommandExit);
    dialog().setKey(Qt::Key_F2, CommandRenameCategory);
    dialog().setKey(Qt::Key_F5, CommandUpdateCategory);
    dialog().setKey(Qt::Key_Delete, CommandDeleteCategory);
    followUpdates(state_.updates, dialog(), {CommandUpdateCategory});
    readFontSize(state_, &dialog());
    dialog().post(CommandRefreshCategories);
}

void CategoryListScreen::command(int id) {
    if (id != CommandRefreshCategories) // not a command of the user
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
        return showAbout(state_.stack);
    case CommandExit:
        return close();
    case CommandOpenChannels:
        return openTapped();
    case CommandRefreshCategories:
        return refresh();
    default:
        if (chooseFontSize(state_, id))
            dialog().post(CommandRefreshCategories);
    }
}

void CategoryListScreen::refresh() {
    if (!list_->isEditingLabel())
        list_->setFocus();
    state_.changes.ask(
        &dialog(), [&device = state_.device] { return listedCategories(device); },
        [this](const std::optional<QStringList> &names) {
            const bool isFailureShown = std::exchange(isFailureShown_, false);
            if (names)
                showCategories(*names);
            else if (!isFailureShown)
                ShowError(state_, fileProblemString);
            isUnread_ = !names; // set after the box, whose end activates the screen
            if (state_.tap)
                dialog().post(CommandOpenChannels);
        });
}

void CategoryListScreen::showCategories(const QStringList &names) {
    // A label that is being typed stays, and the names lack the changes that are not stored yet.
    if (list_->isEditingLabel() || changes_ > 0) {
        isRefreshOwed_ = true;
        return;
    }
    list_->setRows(rowsOf(names));
    list_->setEmptyText(resourceString(noCategoryYetString));
    list_->selectRow(0);
    fitColumn(*list_, state_.stack);
}

// Shows what another program has made of the categories. A failure is not shown: the user has asked
// for nothing.
void CategoryListScreen::follow() {
    const auto canFollow = [this] {
        const bool isFree =
            state_.stack.top() == &dialog() && !list_->isEditingLabel() && changes_ == 0;
        isFollowOwed_ = !isFree;
        return isFree;
    };
    if (!canFollow())
        return;
    state_.changes.ask(
        &dialog(), [&store = state_.device.categoryStore] { return store.listedCategories(); },
        [this, canFollow](const std::optional<QStringList> &names) {
            if (!names || !canFollow() || areSame(*names, list_->rowTexts()))
                return;
            followRows(*list_, rowsOf(*names));
            fitColumn(*list_, state_.stack);
        });
}

bool CategoryListScreen::warnWithoutSelection() {
    if (SelectedRow(list_) >= 0)
        return false;
    ShowMessage(state_, warningString, noCategorySelectedString);
    return true;
}

void CategoryListScreen::updateCategory() {
    if (!warnWithoutSelection())
        startUpdate(state_, list_->rowText(SelectedRow(list_)));
}

void CategoryListScreen::exportSelected() {
    if (!warnWithoutSelection())
        exportCategory(state_, list_->rowText(SelectedRow(list_)));
}

void CategoryListScreen::handleKey(int key, bool &isTaken) {
    if (!isEnter(key))
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
    // They include the changes since the list was read.
    state_.categories = list_->rowTexts();
    ChannelListScreen screen(state_);
    if (RunDialog(ListTemplate, state_.stack, screen) == 1)
        dialog().post(CommandRefreshCategories);
}

void CategoryListScreen::activated() {
    if (std::exchange(isUnread_, false))
        dialog().post(CommandRefreshCategories);
    if (std::exchange(isFollowOwed_, false))
        follow();
    lookForTodayTap(state_);
    QGuiApplication::inputMethod()->hide();
}

bool CategoryListScreen::summoned() {
    const bool isListed = state_.tap && list_->findRow(state_.tap->category) >= 0;
    dialog().post(isListed ? CommandOpenChannels : CommandRefreshCategories);
    return true;
}

void CategoryListScreen::openTapped() {
    if (!followTodayTap(state_))
        return;
    if (list_->findRow(state_.todayCategory) >= 0)
        openChannels();
    else
        forgetTodayTap(state_); // its category was deleted
}

void CategoryListScreen::sized() {
    const DialogUnits units = state_.stack.units();
    const int covered = coveredHeight(state_.stack);
    if (covered > units.pixels(menuBarUnits)) {
        QRect place = list_->geometry();
        place.setBottom(std::max(place.top(), units.screen().height() - covered - 1));
        list_->setGeometry(place);
        list_->scrollTo(list_->currentIndex());
    }
    fitColumn(*list_, state_.stack);
}

void CategoryListScreen::close() {
    list_->finishEditing();
    state_.lists = {};
    dialog().end(0);
}

void CategoryListScreen::prepareMenu(ScreenMenu &menu) {
    checkFontSize(state_, menu);
    keepRow(menu, *list_);
}

int OpenCategoryList(AppState &state) {
    CategoryListScreen screen(state);
    return RunDialog(CategoryListTemplate, state.stack, screen);
}

} // namespace tidebrook
