#include "kit/wrapping_buttons.h"

#include <QStyleOptionButton>
#include <QStylePainter>

namespace tidebrook {

namespace {

QColor outlineColour(const QPalette &palette) {
    constexpr float faint = 0.45F;
    QColor colour = palette.color(QPalette::WindowText);
    colour.setAlphaF(faint);
    return colour;
}

void paintOutline(QPainter &painter, const QAbstractButton &button,
                  const QStyleOptionButton &option, QStyle::ControlElement mark) {
    const QStyle &style = *button.style();
    if (mark == QStyle::CE_CheckBox)
        return paintBoxOutline(painter,
                               style.subElementRect(QStyle::SE_CheckBoxIndicator, &option, &button),
                               button.palette());
    const QRectF place = style.subElementRect(QStyle::SE_RadioButtonIndicator, &option, &button);
    painter.setPen(outlineColour(button.palette()));
    painter.setBrush(Qt::NoBrush);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawEllipse(place.adjusted(1, 1, -1, -1));
}

void paintWrapped(QAbstractButton &button, QStyleOptionButton option, QStyle::ControlElement mark,
                  QStyle::SubElement contents) {
    QStylePainter painter(&button);
    const QString text = std::exchange(option.text, QString());
    painter.drawControl(mark, option);
    paintOutline(painter, button, option, mark);
    const QRect place = button.style()->subElementRect(contents, &option, &button);
    const bool isMirrored = button.layoutDirection() == Qt::RightToLeft;
    const QRect space =
        isMirrored ? QRect(0, 0, place.right(), button.height())
                   : QRect(place.left(), 0, button.width() - place.left(), button.height());
    painter.drawItemText(
        space, Qt::AlignLeading | Qt::AlignVCenter | Qt::TextWordWrap | Qt::TextShowMnemonic,
        button.palette(), button.isEnabled(), text, QPalette::WindowText);
}

} // namespace

void paintBoxOutline(QPainter &painter, const QRect &box, const QPalette &palette) {
    painter.setPen(outlineColour(palette));
    painter.setBrush(Qt::NoBrush);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.drawRect(box.adjusted(0, 0, -1, -1));
}

void WrappingCheckBox::paintEvent(QPaintEvent *) {
    QStyleOptionButton option;
    initStyleOption(&option);
    paintWrapped(*this, option, QStyle::CE_CheckBox, QStyle::SE_CheckBoxContents);
}

void WrappingRadioButton::paintEvent(QPaintEvent *) {
    QStyleOptionButton option;
    initStyleOption(&option);
    paintWrapped(*this, option, QStyle::CE_RadioButton, QStyle::SE_RadioButtonContents);
}

} // namespace tidebrook
