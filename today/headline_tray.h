#pragma once

#include "today/item_menu.h"

#include <QSystemTrayIcon>

namespace tidebrook {

/// The icon in the desktop's tray: with the number of unread articles in it, and the newest
/// headlines in its tooltip and its menu.
class HeadlineTray : public QSystemTrayIcon {
    Q_OBJECT

public:
    HeadlineTray();

    void setState(const TodayState &state);
    ItemMenu &menu() { return menu_; }

private:
    void setTotal(quint32 total);

    ItemMenu menu_;
    QString total_ = QStringLiteral("-"); // as the icon shows it; at first there is none
};

} // namespace tidebrook
