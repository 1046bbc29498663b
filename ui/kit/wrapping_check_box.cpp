#include "ui/kit/wrapping_check_box.h"

#include <QStyleOptionButton>
#include <QStylePainter>

namespace tidebrook {

void WrappingCheckBox::paintEvent(QPaintEvent *) {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    const QString text = option.text;
    option.text.clear();
    painter.drawControl(QStyle::CE_CheckBox, option);

    const QRect place = style()->subElementRect(QStyle::SE_CheckBoxContents, &option, this);
    const QRect space(place.left(), 0, width() - place.left(), height());
    const int flags = Qt::AlignLeading | Qt::AlignVCenter | Qt::TextWordWrap | Qt::TextShowMnemonic;
    painter.drawItemText(space, flags, palette(), isEnabled(), text, QPalette::WindowText);
}

} // namespace tidebrook
