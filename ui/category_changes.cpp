// The changes that a user makes in the category list: shown at once, and taken back when they fail.

#include "ui/category_list_screen.h"

#include "app/messages.h"
#include "kit/dialog.h"
#include "kit/list_view.h"
#include "kit/screen_stack.h"
#include "res/commands.h"
#include "res/strings.h"
#include "ui/column_width.h"

#include <utility>

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

// The end of a change that the list shows already. Until then the stored rows are not shown.
JobEnd CategoryListScreen::counted(JobEnd end) {
    ++changes_;
    return [this, end = std::move(end)](int messageId) {
        --changes_;
        end(messageId);
        catchUp();
    };
}

// Does what had to wait for the end of a change, or of the editing, which a box would end.
void CategoryListScreen::catchUp() {
    if (list_->isEditingLabel() || changes_ > 0)
        return;
    if (std::exchange(isFollowOwed_, false))
        follow();
    if (std::exchange(isRefreshOwed_, false)) {
        isUnread_ = false; // no second refresh
        dialog().post(CommandRefreshCategories);
    }
    if (const int messageId = std::exchange(owedMessage_, 0); messageId != 0) {
        isFailureShown_ = true;
        showChangeEnd(state_, messageId);
    }
}

void CategoryListScreen::newCategory() {
    const QString name = newName(*list_);
    list_->insertRow(0, {name});
    fitColumn(*list_, state_.stack);
    list_->editLabel(0);
    const JobEnd end = counted([this, name](int messageId) {
        if (messageId == 0)
            return;
        list_->cancelEditing();
        if (const int row = list_->findRow(name); row >= 0)
            list_->removeRow(row);
        reportFailure(messageId);
    });
    const auto add = [name](LockedSubscriptions &subscriptions) {
        return subscriptions.addCategory(name);
    };
    if (!startChange(state_, &dialog(), add, end))
        end(memoryProblemString);
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
        ShowMessage(state_, warningString, nameExistsString, name);
        return;
    }
    const QString old = list_->rowText(row);
    list_->setRowText(row, name);
    const JobEnd end = counted([this](int messageId) {
        isRefreshOwed_ = true;
        reportFailure(messageId);
    });
    const auto rename = [old, name](LockedSubscriptions &subscriptions) {
        return subscriptions.RenameCategory(old, name);
    };
    if (!startChange(state_, &dialog(), rename, end))
        end(memoryProblemString);
}

void CategoryListScreen::deleteCategory() {
    const int row = SelectedRow(list_);
    if (row < 0)
        return;
    const QString name = list_->rowText(row);
    list_->scrollTo(list_->currentIndex());
    if (!askUser(state_, confirmDeletionString, deleteCategoryString, name))
        return;
    const int asked = list_->findRow(name); // the rows may have changed behind the box
    if (asked < 0)
        return;
    // At once; the row comes back when the deletion fails.
    list_->removeRow(asked);
    list_->selectRow(asked);
    fitColumn(*list_, state_.stack);
    const JobEnd end = counted([this](int messageId) { reportFailure(messageId); });
    const auto erase = [name](LockedSubscriptions &subscriptions) {
        return subscriptions.deleteCategory(name);
    };
    if (!startChange(state_, &dialog(), erase, end))
        end(memoryProblemString);
}

// The message and the stored rows are shown by `catchUp`.
void CategoryListScreen::reportFailure(int messageId) {
    isRefreshOwed_ = isRefreshOwed_ || messageId != 0;
    owedMessage_ = messageId != 0 ? messageId : owedMessage_;
}

} // namespace tidebrook
