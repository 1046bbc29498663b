#include "kit/touch_style.h"

#include "kit/page/contrast.h"
#include "kit/screen_menu.h"

#include <QApplication>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOptionMenuItem>

#include <algorithm>

namespace tidebrook {

namespace {

class TouchStyle : public QProxyStyle {
public:
    using QProxyStyle::polish;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returnData) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option,
                         const QWidget *widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;

    void polish(QPalette &palette) override;

    int touchHeight = 0;

private:
    void drawMark(ControlElement element, const QStyleOptionButton &option, QPainter &painter,
                  const QWidget *widget) const;
};

// Styles draw the outlines of marks darker than the ground, which is invisible on dark ground.
void prepareOutline(QPainter &painter, const QPalette &palette) {
    constexpr float faint = 0.45F;
    QColor colour = palette.color(QPalette::WindowText);
    colour.setAlphaF(faint);
    painter.setPen(colour);
    painter.setBrush(Qt::NoBrush);
}

void drawBoxOutline(QPainter &painter, const QRect &box, const QPalette &palette) {
    prepareOutline(painter, palette);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.drawRect(box.adjusted(0, 0, -1, -1));
}

void drawRadioOutline(QPainter &painter, const QRectF &circle, const QPalette &palette) {
    prepareOutline(painter, palette);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawEllipse(circle.adjusted(1, 1, -1, -1));
}

// Whatever colours the desktop has, also when it changes them.
void TouchStyle::polish(QPalette &palette) {
    QProxyStyle::polish(palette);
    makeReadable(palette);
}

QSize TouchStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                                   const QWidget *widget) const {
    QSize wanted = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_MenuItem: {
        const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
        if (item != nullptr && item->menuItemType == QStyleOptionMenuItem::Separator)
            break;
        const auto *menu = qobject_cast<const ScreenMenu *>(widget);
        const int height =
            menu != nullptr ? std::min(touchHeight, menu->mostEntryHeight()) : touchHeight;
        // The column of the check marks grows with the height, and takes room from the texts.
        const int growth = std::max(0, height - wanted.height());
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
    case SH_Menu_AllowActiveAndDisabled: // the highlight passes over what cannot be chosen
    case SH_EtchDisabledText:            // its shadow is hard to read on dark ground
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
    case PM_MenuScrollerHeight: // a finger holds it to scroll the menu
        return std::max(pixels, touchHeight);
    case PM_MenuDesktopFrameWidth: { // what is left of the desktop has no room for such a menu
        const auto *menu = qobject_cast<const ScreenMenu *>(widget);
        return menu != nullptr && menu->isScrolled() ? QWIDGETSIZE_MAX / 2 : pixels;
    }
    default:
        return pixels;
    }
}

QRect TouchStyle::subElementRect(SubElement element, const QStyleOption *option,
                                 const QWidget *widget) const {
    if (element == SE_CheckBoxClickRect || element == SE_RadioButtonClickRect)
        return option->rect;
    return QProxyStyle::subElementRect(element, option, widget);
}

void TouchStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                               QPainter *painter, const QWidget *widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_IndicatorItemViewItemCheck)
        drawBoxOutline(*painter, option->rect, option->palette);
}

void TouchStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                             const QWidget *widget) const {
    if (element != CE_CheckBox && element != CE_RadioButton)
        return QProxyStyle::drawControl(element, option, painter, widget);
    const auto &button = *qstyleoption_cast<const QStyleOptionButton *>(option);
    QStyleOptionButton mark(button);
    mark.text.clear();
    drawMark(element, mark, *painter, widget);
    const SubElement contents =
        element == CE_CheckBox ? SE_CheckBoxContents : SE_RadioButtonContents;
    const QRect place = subElementRect(contents, &mark, widget);
    QRect room = option->rect;
    if (option->direction == Qt::RightToLeft)
        room.setRight(place.right());
    else
        room.setLeft(place.left());
    drawItemText(painter, room,
                 Qt::AlignLeading | Qt::AlignVCenter | Qt::TextWordWrap | Qt::TextShowMnemonic,
                 option->palette, option->state.testFlag(State_Enabled), button.text,
                 QPalette::WindowText);
}

void TouchStyle::drawMark(ControlElement element, const QStyleOptionButton &option,
                          QPainter &painter, const QWidget *widget) const {
    QProxyStyle::drawControl(element, &option, &painter, widget);
    if (element == CE_CheckBox)
        drawBoxOutline(painter, subElementRect(SE_CheckBoxIndicator, &option, widget),
                       option.palette);
    else
        drawRadioOutline(painter, subElementRect(SE_RadioButtonIndicator, &option, widget),
                         option.palette);
}

} // namespace

void installTouchStyle() { QApplication::setStyle(new TouchStyle); }

void setTouchHeight(int pixels) {
    if (auto *style = dynamic_cast<TouchStyle *>(QApplication::style()))
        style->touchHeight = pixels;
}

} // namespace tidebrook
