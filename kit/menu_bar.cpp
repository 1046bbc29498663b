#include "kit/menu_bar.h"

#include "kit/screen_menu.h"
#include "res/strings.h"

#include <QPainter>
#include <QPushButton>

namespace tidebrook {

MenuBar::MenuBar(const MenuBarResource &resource, QWidget *parent)
    : QWidget(parent), resource_(resource), left_(makeKey(resource.left)),
      right_(makeKey(resource.right)) {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Button);
}

QPushButton *MenuBar::makeKey(const SoftKey &key) {
    auto *button = new QPushButton(resourceString(key.textId), this);
    button->setFlat(true);
    // Tab stays among the controls.
    button->setFocusPolicy(Qt::NoFocus);
    button->setVisible(key.textId != 0);
    connect(button, &QPushButton::clicked, this, [this, &key] {
        if (key.menu.empty())
            Q_EMIT chosen(key.command);
        else if (menu_ != nullptr && menu_->isVisible())
            menu_->close();
        else
            openMenu(menuKeyPlace());
    });
    return button;
}

void MenuBar::enable(int command, bool isEnabled) {
    if (isEnabled)
        disabled_.remove(command);
    else
        disabled_.insert(command);
    if (menu_ != nullptr)
        menu_->enable(command, isEnabled);
    if (resource_.left.command == command)
        left_->setEnabled(isEnabled);
    if (resource_.right.command == command)
        right_->setEnabled(isEnabled);
}

QRect MenuBar::menuKeyPlace() const { return {right_->mapToGlobal(QPoint(0, 0)), right_->size()}; }

void MenuBar::openMenu() {
    openMenu(menuKeyPlace());
    if (menu_ != nullptr)
        menu_->highlightFirst();
}

void MenuBar::openMenu(const QRect &besideGlobal) {
    if (resource_.right.menu.empty())
        return;
    // Made anew, because one that was open before keeps the sizes of that time.
    delete menu_;
    menu_ = new ScreenMenu(resource_.right.menu, this);
    for (const int command : std::as_const(disabled_))
        menu_->enable(command, false);
    Q_EMIT menuAboutToOpen(*menu_);
    connect(menu_, &ScreenMenu::chosen, this, &MenuBar::chosen);
    menu_->openBeside(besideGlobal);
}

void MenuBar::resizeEvent(QResizeEvent *) {
    const int half = width() / 2;
    left_->setGeometry(0, 0, half, height());
    right_->setGeometry(half, 0, width() - half, height());
}

void MenuBar::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(0, 0, width(), 0);
    painter.drawLine(width() / 2, height() / 4, width() / 2, height() * 3 / 4);
}

} // namespace tidebrook

#include "moc_menu_bar.cpp"
