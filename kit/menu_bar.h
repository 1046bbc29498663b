#pragma once

#include "res/menus.h"

#include <QSet>
#include <QWidget>

class QPushButton;

namespace tidebrook {

class ScreenMenu;

/// The two soft keys at the bottom of a screen. A key sends its command; the right one may open a
/// menu instead, and closes it again.
class MenuBar : public QWidget {
    Q_OBJECT

public:
    MenuBar(const MenuBarResource &resource, QWidget *parent);

    /// Entries and keys of disabled commands are shown, but cannot be chosen.
    void enable(int command, bool isEnabled);
    bool isEnabled(int command) const { return !disabled_.contains(command); }

    /// Opens the menu, if there is one, for the keyboard: beside its key, with the first entry
    /// highlighted.
    void openMenu();
    /// Opens the menu, if there is one, above or below a place of the screen that was tapped: no
    /// entry lies over it.
    void openMenu(const QRect &besideGlobal);

Q_SIGNALS:
    void chosen(int command);
    /// The receiver can set the menu's check marks. What it connects to the menu's `chosen` comes
    /// before the command.
    void menuAboutToOpen(ScreenMenu &menu);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QPushButton *makeKey(const SoftKey &key);
    QRect menuKeyPlace() const;

    const MenuBarResource &resource_;
    QPushButton *left_;
    QPushButton *right_;
    ScreenMenu *menu_ = nullptr; // opened last
    QSet<int> disabled_;
};

} // namespace tidebrook
