#include "kit/property_sheet.h"

#include "kit/dialog.h"
#include "kit/header_bar.h"
#include "kit/screen_stack.h"
#include "res/commands.h"

#include <QStackedWidget>
#include <QTabBar>

namespace tidebrook {

namespace {

QString titleOf(const PropertyPage &page) {
    return QString::fromUtf16(dialogTemplate(page.templateId())->title);
}

} // namespace

void PropertySheet::initialise() {
    tabs_ = dialog().control<QTabBar>(SheetTabs);
    area_ = dialog().control<QStackedWidget>(SheetPages);
    dialog().makeMenuBar(SettingsSheetMenuBar);
    dialog().setBackKeys(CommandCancelSettings);
    dialog().setEnterKeys(CommandOk);
    dialog().setKey(Qt::CTRL | Qt::Key_Tab, CommandNext);
    dialog().setKey(Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab, CommandPrevious);
    forms_.fill(nullptr, static_cast<qsizetype>(pages_.size()));
    for (const auto &page : pages_)
        tabs_->addTab(titleOf(*page));
    connect(tabs_, &QTabBar::currentChanged, this, &PropertySheet::turnTo);
    turnTo(tabs_->currentIndex());
}

void PropertySheet::turnTo(int index) {
    PropertyPage &page = *pages_[static_cast<std::size_t>(index)];
    if (forms_[index] == nullptr) {
        forms_[index] = new Form(page.templateId(), area_);
        area_->addWidget(forms_[index]);
        page.initialise(*forms_[index]);
    }
    area_->setCurrentWidget(forms_[index]);
    dialog().headerBar()->setCaption(titleOf(page));
    sized();
}

void PropertySheet::sized() {
    const DialogUnits units = dialog().stack().units();
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
        dialog().end(1);
    } else if (id == CommandCancelSettings) {
        close();
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

} // namespace tidebrook
