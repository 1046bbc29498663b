#include "kit/property_sheet.h"

#include "kit/dialog.h"
#include "kit/header_bar.h"
#include "kit/screen_stack.h"
#include "res/commands.h"
#include "res/ids.h"

#include <QKeyEvent>
#include <QStackedWidget>
#include <QTabBar>

namespace tidebrook {

namespace {

QString titleOf(const PropertyPage &page) {
    const DialogTemplate *dialog = dialogTemplate(page.templateId());
    return dialog != nullptr ? QString::fromUtf16(dialog->title) : QString();
}

} // namespace

PropertySheet::PropertySheet(std::vector<std::unique_ptr<PropertyPage>> pages,
                             std::function<void()> help)
    : pages_(std::move(pages)), help_(std::move(help)) {}

bool PropertySheet::initialise(Dialog &dialog) {
    dialog_ = &dialog;
    tabs_ = dialog.control<QTabBar>(SheetTabs);
    area_ = dialog.control<QStackedWidget>(SheetPages);
    if (tabs_ == nullptr || area_ == nullptr || !dialog.makeMenuBar(SettingsSheetMenuBar))
        return false;
    dialog.makeHeaderBar({});
    forms_.fill(nullptr, static_cast<qsizetype>(pages_.size()));
    for (const auto &page : pages_)
        tabs_->addTab(titleOf(*page));
    QObject::connect(tabs_, &QTabBar::currentChanged, &dialog,
                     [this](int index) { turnTo(index); });
    turnTo(tabs_->currentIndex());
    return true;
}

void PropertySheet::turnTo(int index) {
    PropertyPage &page = *pages_[static_cast<std::size_t>(index)];
    if (forms_[index] == nullptr) {
        forms_[index] = new Form(page.templateId(), area_);
        area_->addWidget(forms_[index]);
        page.initialise(*forms_[index]);
    }
    area_->setCurrentWidget(forms_[index]);
    dialog_->headerBar()->setCaption(titleOf(page));
    sized();
}

void PropertySheet::sized() {
    const DialogUnits units = dialog_->stack().units();
    for (std::size_t i = 0; i < pages_.size(); ++i) {
        Form *form = forms_.value(static_cast<qsizetype>(i));
        if (form != nullptr)
            RelayoutFromTemplate(*form, templateForShape(pages_[i]->templateId(), units.screen()),
                                 units);
    }
}

void PropertySheet::command(int id) {
    if (id == CommandDone || id == CommandOk) {
        apply();
        dialog_->end(1);
    } else if (id == CommandCancelSettings) {
        dialog_->end(0);
    } else if (id == CommandNext || id == CommandPrevious) {
        const int step = id == CommandNext ? 1 : tabs_->count() - 1;
        tabs_->setCurrentIndex((tabs_->currentIndex() + step) % tabs_->count());
    }
}

void PropertySheet::apply() {
    const int first = tabs_->currentIndex();
    pages_[static_cast<std::size_t>(first)]->save();
    for (int i = 0; i < forms_.size(); ++i) {
        if (i != first && forms_[i] != nullptr)
            pages_[static_cast<std::size_t>(i)]->save();
    }
}

void PropertySheet::close() { dialog_->end(0); }

std::optional<int> PropertySheet::backCommand() const { return CommandCancelSettings; }

std::optional<int> PropertySheet::commandOfKey(const QKeyEvent &event) const {
    if (event.modifiers() == Qt::ControlModifier && event.key() == Qt::Key_Tab)
        return CommandNext;
    if (event.key() == Qt::Key_Backtab && (event.modifiers() & Qt::ControlModifier) != 0)
        return CommandPrevious;
    if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter)
        return CommandOk;
    return std::nullopt;
}

} // namespace tidebrook
