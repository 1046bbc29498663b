#pragma once

#include "res/menus.h"

#include <QHash>
#include <QMenu>

namespace tidebrook {

/// A menu made from a resource.
class ScreenMenu : public QMenu {
    Q_OBJECT

public:
    ScreenMenu(std::span<const MenuEntry> entries, QWidget *parent);

    void check(int command, bool isChecked);
    /// Of the entries from `first` to `last`, checks only that of `command`. Once for each menu.
    void radioCheck(int first, int last, int command);
    void enable(int command, bool isEnabled);

Q_SIGNALS:
    void chosen(int command);

private:
    void fill(QMenu &menu, std::span<const MenuEntry> entries);

    QHash<int, QAction *> actions_;
};

} // namespace tidebrook
