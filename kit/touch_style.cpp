#include "kit/touch_style.h"

#include <QApplication>
#include <QProxyStyle>
#include <QStyleOptionMenuItem>

#include <algorithm>

namespace tidebrook {

namespace {

class TouchStyle : public QProxyStyle {
public:
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returnData) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override;

    int touchHeight = 0;
};

QSize TouchStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                                   const QWidget *widget) const {
    QSize wanted = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_MenuItem: {
        const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
        if (item != nullptr && item->menuItemType == QStyleOptionMenuItem::Separator)
            break;
        // The column of the check marks grows with the height, and takes that of the texts' room.
        const int growth = std::max(0, touchHeight - wanted.height());
        wanted += QSize(growth, growth);
        break;
    }
    case CT_PushButton:
    case CT_TabBarTab:
    case CT_ItemViewItem:
        wanted.setHeight(std::max(wanted.height(), touchHeight));
        break;
    default:
        break;
    }
    return wanted;
}

int TouchStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                          QStyleHintReturn *returnData) const {
    switch (hint) {
    case SH_ComboBox_Popup: // a list that is scrolled, not a menu as high as the screen
        return 0;
    case SH_Menu_Scrollable: // rather than a second column
        return 1;
    case SH_EtchDisabledText: // whose shadow hardly anybody can read on dark ground
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
}

int TouchStyle::pixelMetric(PixelMetric metric, const QStyleOption *option,
                            const QWidget *widget) const {
    const int pixels = QProxyStyle::pixelMetric(metric, option, widget);
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return std::max(pixels, touchHeight / 3);
    case PM_MenuScrollerHeight: // which a finger has to hold to reach the menu's other end
        return std::max(pixels, touchHeight);
    default:
        return pixels;
    }
}

TouchStyle *installedStyle() { return dynamic_cast<TouchStyle *>(QApplication::style()); }

} // namespace

void installTouchStyle() { QApplication::setStyle(new TouchStyle); }

void setTouchHeight(int pixels) {
    if (TouchStyle *style = installedStyle())
        style->touchHeight = pixels;
}

} // namespace tidebrook
