#pragma once

#include "res/menus.h"

#include <QHash>
#include <QMenu>

namespace tidebrook {

/// A menu made from a resource. Choosing an entry tells its command.
class ScreenMenu : public QMenu {
    Q_OBJECT

public:
    ScreenMenu(std::span<const MenuEntry> entries, QWidget *parent);

    /// Checks an entry, or takes its check away.
    void check(int command, bool isChecked);
    /// Of the entries from `first` to `last`, checks this one alone.
    void radioCheck(int first, int last, int command);
    void enable(int command, bool isEnabled);

Q_SIGNALS:
    void chosen(int command);

private:
    void fill(QMenu &menu, std::span<const MenuEntry> entries);

    QHash<int, QAction *> actions_;
};

} // namespace tidebrook
