#pragma once

#include "res/menus.h"

#include <QSet>
#include <QWidget>

class QPushButton;

namespace tidebrook {

class ScreenMenu;

/// The two soft keys at the bottom of a screen. A key sends its command; the right one may open a
/// menu instead.
class MenuBar : public QWidget {
    Q_OBJECT

public:
    MenuBar(const MenuBarResource &resource, QWidget *parent);

    /// Entries and keys of disabled commands are shown, but cannot be chosen.
    void enable(int command, bool isEnabled);
    bool isEnabled(int command) const { return !disabled_.contains(command); }

    /// Opens the menu, if there is one.
    void openMenu();
    void openMenu(const QRect &beside);

Q_SIGNALS:
    void chosen(int command);
    /// The receiver can set the menu's check marks.
    void menuAboutToOpen(ScreenMenu &menu);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QPushButton *makeKey(const SoftKey &key);

    const MenuBarResource &resource_;
    QPushButton *left_;
    QPushButton *right_;
    ScreenMenu *menu_ = nullptr; // opened last
    QSet<int> disabled_;
};

} // namespace tidebrook
