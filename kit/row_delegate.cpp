#include "kit/row_delegate.h"

#include "kit/icon.h"
#include "kit/list_view.h"
#include "platform/base/text.h"

#include <QPainter>
#include <QStyle>

namespace tidebrook {

namespace {

constexpr int gap = 4; // pixels between an image, the label and the row's end

QPalette::ColorRole textRoleOn(QPalette::ColorRole ground) {
    switch (ground) {
    case QPalette::Highlight:
        return QPalette::HighlightedText;
    case QPalette::Button:
        return QPalette::ButtonText;
    default:
        return QPalette::Text;
    }
}

// What was typed or pasted ends at the cursor. The length limit may have halved its last character.
void removeControls(QLineEdit &editor) {
    const QString text = editor.text();
    const QString before = withoutHalves(withoutControls(text.left(editor.cursorPosition())));
    const QString cleaned = before + withoutControls(text.mid(editor.cursorPosition()));
    if (cleaned == text)
        return;
    editor.setText(cleaned);
    editor.setCursorPosition(static_cast<int>(before.size()));
    editor.setModified(true);
}

} // namespace

RowDelegate::RowDelegate(ListView &list) : QStyledItemDelegate(&list), list_(list) {}

QSize RowDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const {
    return {list_.columnWidth(), list_.rowHeight()};
}

// Mirrored where the text runs from right to left.
QRect RowDelegate::labelRect(const QStyleOptionViewItem &option) const {
    const QRect row = option.rect;
    const bool hasImage = list_.isCheckable() || list_.image(0) != nullptr;
    const int start = 2 * gap + (hasImage ? list_.imageSize().width() : 0);
    return QStyle::visualRect(option.direction, row, row.adjusted(start, 0, -gap, 0));
}

QRect RowDelegate::imageRect(const QStyleOptionViewItem &option) const {
    const QSize size = list_.imageSize();
    const QRect place(option.rect.left() + gap,
                      option.rect.top() + (option.rect.height() - size.height()) / 2, size.width(),
                      size.height());
    return QStyle::visualRect(option.direction, option.rect, place);
}

QPalette::ColorRole RowDelegate::groundOf(const QStyleOptionViewItem &option) const {
    if (!option.state.testFlag(QStyle::State_Selected))
        return QPalette::Base;
    return list_.looksFocused() ? QPalette::Highlight : QPalette::Button;
}

void RowDelegate::paintGround(QPainter &painter, const QStyleOptionViewItem &option) const {
    painter.fillRect(option.rect, option.palette.brush(groundOf(option)));
    painter.setPen(option.palette.color(QPalette::Button));
    painter.drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
}

void RowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                        const QModelIndex &index) const {
    paintGround(*painter, option);
    const ListRow row = list_.row(index.row());
    if (list_.isCheckable())
        paintCheckMark(*painter, option, row.isChecked);
    else if (const char *name = list_.image(row.image))
        painter->drawPixmap(imageRect(option).topLeft(),
                            icon(name, list_.imageSize(), option.palette));
    painter->setPen(option.palette.color(textRoleOn(groundOf(option))));
    painter->setFont(option.font);
    paintTexts(*painter, option, row);
}

void RowDelegate::paintCheckMark(QPainter &painter, const QStyleOptionViewItem &option,
                                 bool isChecked) const {
    QStyleOptionViewItem mark(option);
    const QStyle &style = *list_.style();
    mark.rect = QStyle::alignedRect(option.direction, Qt::AlignCenter,
                                    {style.pixelMetric(QStyle::PM_IndicatorWidth),
                                     style.pixelMetric(QStyle::PM_IndicatorHeight)},
                                    imageRect(option));
    mark.state.setFlag(isChecked ? QStyle::State_On : QStyle::State_Off);
    style.drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &mark, &painter, &list_);
}

void RowDelegate::paintTexts(QPainter &painter, const QStyleOptionViewItem &option,
                             const ListRow &row) const {
    QRect place = labelRect(option).adjusted(0, 0, 0, -gap / 2);
    if (!row.detail.isEmpty()) {
        painter.drawText(place, Qt::AlignTrailing | Qt::AlignBottom | Qt::TextSingleLine,
                         row.detail);
        const int taken = option.fontMetrics.horizontalAdvance(row.detail) + gap;
        place = QStyle::visualRect(option.direction, place, place.adjusted(0, 0, -taken, 0));
    }
    const QString text =
        option.fontMetrics.elidedText(row.text, Qt::ElideRight, place.width(), Qt::TextSingleLine);
    painter.drawText(place, Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine, text);
}

QWidget *RowDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                   const QModelIndex &index) const {
    auto *editor = new QLineEdit(parent);
    editor->setMaxLength(list_.labelLimit());
    editor->setAutoFillBackground(true);
    editor->setFont(list_.font());
    connect(editor, &QLineEdit::textEdited, editor, [editor] { removeControls(*editor); });
    list_.watchEditor(editor, index.row());
    return editor;
}

void RowDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const {
    auto *edit = static_cast<QLineEdit *>(editor);
    // A change of the row must not overwrite what was typed.
    if (edit->isModified())
        return;
    edit->setText(index.data(Qt::EditRole).toString());
    edit->selectAll();
}

void RowDelegate::setModelData(QWidget *editor, QAbstractItemModel *,
                               const QModelIndex &index) const {
    const auto *edit = static_cast<QLineEdit *>(editor);
    // An editor that cuts a longer name has not changed it.
    const QString before = index.data(Qt::EditRole).toString();
    const bool isCut = before.size() > edit->maxLength();
    if (!isCut || edit->text() != before.left(edit->maxLength()))
        list_.storeLabel(index, edit->text());
}

void RowDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                       const QModelIndex &) const {
    editor->setGeometry(labelRect(option));
}

} // namespace tidebrook

#include "moc_row_delegate.cpp"
