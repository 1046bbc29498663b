#include "ui/kit/wrapping_buttons.h"

#include <QStyleOptionButton>
#include <QStylePainter>

namespace tidebrook {

namespace {

void paintWrapped(QAbstractButton &button, QStyleOptionButton option, QStyle::ControlElement mark,
                  QStyle::SubElement contents) {
    QStylePainter painter(&button);
    const QString text = std::exchange(option.text, QString());
    painter.drawControl(mark, option);
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
