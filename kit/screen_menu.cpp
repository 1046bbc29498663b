#include "kit/screen_menu.h"

#include <QActionGroup>

namespace tidebrook {

ScreenMenu::ScreenMenu(std::span<const MenuEntry> entries, QWidget *parent) : QMenu(parent) {
    fill(*this, entries);
}

void ScreenMenu::fill(QMenu &menu, std::span<const MenuEntry> entries) {
    for (const MenuEntry &entry : entries) {
        if (entry.text == nullptr) {
            menu.addSeparator();
        } else if (!entry.entries.empty()) {
            fill(*menu.addMenu(QString::fromUtf16(entry.text)), entry.entries);
        } else {
            QAction *action = menu.addAction(QString::fromUtf16(entry.text));
            const int command = entry.command;
            connect(action, &QAction::triggered, this, [this, command] { Q_EMIT chosen(command); });
            actions_.insert(command, action);
        }
    }
}

void ScreenMenu::check(int command, bool isChecked) {
    if (QAction *action = actions_.value(command)) {
        action->setCheckable(true);
        action->setChecked(isChecked);
    }
}

void ScreenMenu::radioCheck(int first, int last, int command) {
    auto *group = new QActionGroup(this); // makes the style draw radio marks
    for (int id = first; id <= last; ++id) {
        group->addAction(actions_.value(id));
        check(id, id == command);
    }
}

void ScreenMenu::enable(int command, bool isEnabled) {
    if (QAction *action = actions_.value(command))
        action->setEnabled(isEnabled);
}

} // namespace tidebrook
