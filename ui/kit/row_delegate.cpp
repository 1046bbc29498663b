#include "ui/kit/row_delegate.h"

#include "ui/kit/icon.h"
#include "ui/kit/label_editor.h"
#include "ui/kit/list_view.h"

#include <QPainter>

namespace tidebrook {

namespace {

constexpr int gap = 4; // pixels between an image, the label and the row's end

struct RowColours {
    QPalette::ColorRole background;
    QPalette::ColorRole text;
};

// A selection that keys do not reach stays visible, but does not catch the eye.
RowColours coloursOf(const QStyleOptionViewItem &option, bool listHasFocus) {
    if (!(option.state & QStyle::State_Selected))
        return {QPalette::Base, QPalette::Text};
    return listHasFocus ? RowColours{QPalette::Highlight, QPalette::HighlightedText}
                        : RowColours{QPalette::Button, QPalette::ButtonText};
}

} // namespace

RowDelegate::RowDelegate(ListView &list) : QStyledItemDelegate(&list), list_(list) {}

QSize RowDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const {
    return {list_.columnWidth(), list_.rowHeight()};
}

QRect RowDelegate::labelRect(const QRect &row) const {
    return row.adjusted(list_.imageSize().width() + 2 * gap, 0, -gap, 0);
}

void RowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                        const QModelIndex &index) const {
    const RowColours colours = coloursOf(option, list_.hasFocus());
    painter->fillRect(option.rect, option.palette.brush(colours.background));
    painter->setPen(option.palette.color(QPalette::Button));
    painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());

    const ListRow row = list_.row(index.row());
    if (const char *name = list_.image(row.image)) {
        const QSize size = list_.imageSize();
        painter->drawPixmap(option.rect.left() + gap,
                            option.rect.top() + (option.rect.height() - size.height()) / 2,
                            icon(name, size, option.palette));
    }

    painter->setPen(option.palette.color(colours.text));
    painter->setFont(option.font);
    QRect place = labelRect(option.rect);
    if (!row.detail.isEmpty()) {
        painter->drawText(place, Qt::AlignRight | Qt::AlignBottom | Qt::TextSingleLine, row.detail);
        place.setRight(place.right() - option.fontMetrics.horizontalAdvance(row.detail) - gap);
    }
    const QString text =
        option.fontMetrics.elidedText(row.text, Qt::ElideRight, place.width(), Qt::TextSingleLine);
    painter->drawText(place, Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine, text);
}

QWidget *RowDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                   const QModelIndex &index) const {
    auto *editor = new LabelEditor(list_.labelLimit(), parent);
    editor->setFont(list_.font());
    list_.takeEditor(editor, index.row());
    return editor;
}

void RowDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const {
    auto *edit = static_cast<LabelEditor *>(editor);
    // Data that changes while it is being edited must not take away what was typed.
    if (edit->isModified())
        return;
    edit->setText(index.data(Qt::EditRole).toString());
    edit->selectAll();
}

void RowDelegate::setModelData(QWidget *editor, QAbstractItemModel *,
                               const QModelIndex &index) const {
    list_.takeLabel(index, static_cast<LabelEditor *>(editor)->text());
}

void RowDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                       const QModelIndex &) const {
    editor->setGeometry(labelRect(option.rect));
}

} // namespace tidebrook
