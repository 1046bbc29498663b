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
    QActionGroup *group = nullptr;
    for (int id = first; id <= last; ++id) {
        QAction *action = actions_.value(id);
        if (action == nullptr)
            continue;
        if (group == nullptr)
            group =
                action->actionGroup() != nullptr ? action->actionGroup() : new QActionGroup(this);
        action->setCheckable(true);
        action->setActionGroup(group); // which makes the style draw a radio mark
        action->setChecked(id == command);
    }
}

void ScreenMenu::enable(int command, bool isEnabled) {
    if (QAction *action = actions_.value(command))
        action->setEnabled(isEnabled);
}

} // namespace tidebrook
