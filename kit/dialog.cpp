#include "kit/dialog.h"

#include "kit/dialog_procedure.h"
#include "kit/header_bar.h"
#include "kit/menu_bar.h"
#include "kit/screen_stack.h"
#include "res/menus.h"

#include <QKeyEvent>
#include <QPainter>

#include <utility>

namespace tidebrook {

Dialog::Dialog(int templateId, ScreenStack &stack, DialogProcedure &procedure)
    : Layer(stack), templateId_(templateId), procedure_(procedure),
      form_(new Form(templateId, this, {0, titleStripUnits})) {
    setFont(form_->font());
}

void Dialog::post(int command) {
    QMetaObject::invokeMethod(
        this,
        [this, command] {
            if (isOnTop())
                procedure_.command(command);
            else if (!waiting_.contains(command))
                waiting_.append(command);
        },
        Qt::QueuedConnection);
}

void Dialog::choose(int command) {
    QMetaObject::invokeMethod(
        this,
        [this, command] {
            if (isOnTop())
                procedure_.command(command);
        },
        Qt::QueuedConnection);
}

bool Dialog::isOnTop() const { return !hasEnded() && stack().top() == this; }

bool Dialog::makeMenuBar(MenuBarId id) {
    menuBar_ = new MenuBar(menuBarResource(id), this);
    connect(menuBar_, &MenuBar::chosen, this, &Dialog::choose);
    connect(menuBar_, &MenuBar::menuAboutToOpen, this,
            [this](ScreenMenu &menu) { procedure_.prepareMenu(menu); });
    return true;
}

HeaderBar &Dialog::makeHeaderBar(const QString &caption) {
    headerBar_ = new HeaderBar(this);
    headerBar_->setCaption(caption);
    connect(headerBar_, &HeaderBar::chosen, this, &Dialog::choose);
    return *headerBar_;
}

void Dialog::makeTitleStrip(const QString &caption) {
    headerUnits_ = titleStripUnits;
    makeHeaderBar(caption);
}

void Dialog::makeTitleLine() {
    hasTitleLine_ = true;
    update();
}

void Dialog::relayout() {
    const DialogUnits units = stack().units();
    const int barHeight = units.height(menuBarUnits);
    form_->setGeometry(rect());
    form_->lower();
    if (headerBar_ != nullptr) {
        headerBar_->setGeometry(0, 0, width(), units.height(headerUnits_));
        headerBar_->setUnits(units);
    }
    if (menuBar_ != nullptr)
        menuBar_->setGeometry(0, height() - barHeight, width(), barHeight);
    RelayoutFromTemplate(*form_, templateForShape(templateId_, units.screen()), units);
    procedure_.sized();
}

void Dialog::activated() {
    for (const int command : std::exchange(waiting_, {}))
        post(command);
    procedure_.activated();
}

bool Dialog::summoned() { return procedure_.summoned(); }

void Dialog::closeRequested() { procedure_.close(); }

QWidget *Dialog::firstFocus() {
    if (firstFocus_ != nullptr && firstFocus_->isEnabled())
        return firstFocus_;
    QWidget *next = form_->nextInFocusChain();
    for (; next != form_ && form_->isAncestorOf(next); next = next->nextInFocusChain()) {
        const bool takesFocus = (next->focusPolicy() & Qt::TabFocus) != 0;
        if (takesFocus && next->isEnabled() && next->isVisibleTo(form_))
            return next;
    }
    return this;
}

void Dialog::resizeEvent(QResizeEvent *) { relayout(); }

void Dialog::goBack() {
    if (const auto command = procedure_.backCommand())
        choose(*command);
}

void Dialog::keyPressEvent(QKeyEvent *event) {
    const int key = event->key();
    const bool isAltLeft = key == Qt::Key_Left && event->modifiers() == Qt::AltModifier;
    if (key == Qt::Key_F1 || key == Qt::Key_Help) {
        procedure_.helpRequested();
    } else if ((key == Qt::Key_F10 || key == Qt::Key_Menu) && menuBar_ != nullptr) {
        menuBar_->openMenu();
    } else if (key == Qt::Key_Escape || key == Qt::Key_Back || isAltLeft) {
        goBack();
    } else if (const auto command = procedure_.commandOfKey(*event)) {
        if (menuBar_ == nullptr || menuBar_->isEnabled(*command))
            choose(*command);
    } else {
        event->ignore();
    }
}

void Dialog::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().brush(QPalette::Window));
    if (!hasTitleLine_)
        return;
    const int y = stack().units().height(titleStripUnits + titleLineUnits);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawLine(0, y, width() - 1, y);
}

int RunDialog(int templateId, ScreenStack &stack, DialogProcedure &procedure) {
    if (dialogTemplate(templateId) == nullptr || stack.isClosing())
        return stack.isClosing() ? 0 : -1;
    Dialog dialog(templateId, stack, procedure);
    if (!procedure.initialise(dialog))
        return -1;
    return stack.run(dialog);
}

} // namespace tidebrook
