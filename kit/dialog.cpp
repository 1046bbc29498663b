#include "kit/dialog.h"

#include "kit/dialog_procedure.h"
#include "kit/header_bar.h"
#include "kit/keys.h"
#include "kit/menu_bar.h"
#include "kit/screen_stack.h"
#include "platform/base/text.h"
#include "res/strings.h"

#include <QKeyEvent>
#include <QPainter>

#include <utility>

namespace tidebrook {

Dialog::Dialog(int templateId, ScreenStack &stack, DialogProcedure &procedure)
    : Layer(stack), templateId_(templateId), procedure_(procedure),
      form_(new Form(templateId, this, {0, titleStripUnits})), headerBar_(new HeaderBar(this)) {
    setFont(form_->font());
    connect(headerBar_, &HeaderBar::chosen, this, &Dialog::choose);
}

void Dialog::post(int command) {
    const auto sendOrKeep = [this, command] {
        if (!send(command) && !waiting_.contains(command))
            waiting_.append(command);
    };
    QMetaObject::invokeMethod(this, sendOrKeep, Qt::QueuedConnection);
}

void Dialog::choose(int command) {
    QMetaObject::invokeMethod(
        this, [this, command] { send(command); }, Qt::QueuedConnection);
}

bool Dialog::send(int command) {
    const bool isOnTop = !hasEnded() && stack().top() == this;
    if (isOnTop)
        procedure_.command(command);
    return isOnTop;
}

void Dialog::makeMenuBar(MenuBarId id) {
    menuBar_ = new MenuBar(menuBarResource(id), this);
    connect(menuBar_, &MenuBar::chosen, this, &Dialog::choose);
    connect(menuBar_, &MenuBar::menuAboutToOpen, &procedure_, &DialogProcedure::prepareMenu);
}

void Dialog::setTitle(const QString &title) {
    headerBar_->setCaption(title);
    setWindowTitle(withoutControls(title));
    stack().showTitle();
}

void Dialog::useTitleStrip() {
    headerUnits_ = titleStripUnits;
    headerBar_->setCaption(resourceString(programNameString));
}

void Dialog::drawTitleLine() {
    hasTitleLine_ = true;
    update();
}

void Dialog::setEnterKeys(int command) {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter})
        setKey(key, command);
}

void Dialog::setBackKeys(int command) {
    for (const QKeyCombination key :
         {QKeyCombination(Qt::Key_Escape), QKeyCombination(Qt::Key_Back), Qt::ALT | Qt::Key_Left,
          Qt::CTRL | Qt::Key_W})
        setKey(key, command);
}

void Dialog::relayout() {
    const DialogUnits units = stack().units();
    const QSize whole = units.templateSize();
    const UnitRect bar{0, whole.height() - menuBarUnits, whole.width(), menuBarUnits};
    form_->setGeometry(rect());
    headerBar_->setGeometry(0, 0, width(), units.pixels(headerUnits_));
    headerBar_->arrange();
    const QSize room = units.room();
    menuBar_->setGeometry(units.rect(bar).adjusted(0, room.height(), room.width(), room.height()));
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

void Dialog::keyPressEvent(QKeyEvent *event) {
    const int key = event->key();
    const int exact =
        QKeyCombination(event->modifiers() & ~Qt::KeypadModifier, Qt::Key(key)).toCombined();
    if (isHelp(key)) {
        if (procedure_.hasHelp())
            Q_EMIT stack().helpRequested();
    } else if (isMenu(key)) {
        menuBar_->openMenu();
    } else if (const int command = keys_.value(exact, keys_.value(key)); command != 0) {
        if (menuBar_->isEnabled(command))
            choose(command);
    } else {
        event->ignore();
    }
}

void Dialog::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().brush(QPalette::Window));
    if (!hasTitleLine_)
        return;
    const int y = stack().units().pixels(titleStripUnits + titleLineUnits);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawLine(0, y, width() - 1, y);
}

void DialogProcedure::close() { dialog_->end(0); }

int RunDialog(int templateId, ScreenStack &stack, DialogProcedure &procedure) {
    if (stack.isClosing())
        return 0;
    Dialog dialog(templateId, stack, procedure);
    procedure.start(dialog);
    return stack.run(dialog);
}

} // namespace tidebrook

#include "moc_dialog.cpp"
