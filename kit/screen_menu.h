#pragma once

#include "res/menus.h"

#include <QHash>
#include <QMenu>

namespace tidebrook {

/// A menu made from a resource. A letter that is typed goes to the next entry that begins with it,
/// round and round. A tap beside the menu closes it, and does nothing else.
class ScreenMenu : public QMenu {
    Q_OBJECT

public:
    ScreenMenu(std::span<const MenuEntry> entries, QWidget *parent);

    void check(int command, bool isChecked);
    /// Of the entries from `first` to `last`, checks only that of `command`. Once for each menu.
    void radioCheck(int first, int last, int command);
    void enable(int command, bool isEnabled);

    /// Opens the menu above a place of the screen or below it, where it has the room, and never
    /// over it, nor do the menus within it lie there. Where there is little room its entries are
    /// less high, down to what a finger needs, and what has no room then is scrolled to.
    void openBeside(const QRect &place);
    /// Highlights the first entry that can be chosen, of a menu that is open.
    void highlightFirst();

    /// The most pixels that an entry is made higher to, for a finger.
    int mostEntryHeight() const { return mostEntryHeight_; }
    /// It has not the room that it needs.
    bool isScrolled() const { return isScrolled_; }

Q_SIGNALS:
    void chosen(int command);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fill(QMenu &menu, std::span<const MenuEntry> entries);
    void fitInto(int height);
    bool handleBeside(const QEvent &event);

    QHash<int, QAction *> actions_;
    QRect room_; // of the screen, for this menu and those within it
    QPoint place_;
    int mostEntryHeight_ = QWIDGETSIZE_MAX;
    bool isScrolled_ = false;
};

} // namespace tidebrook
