#include "kit/list_view.h"

#include "kit/keys.h"
#include "kit/row_delegate.h"
#include "kit/touch_scrolling.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <QStyleHints>

#include <algorithm>
#include <utility>

namespace tidebrook {

namespace {

constexpr int rowUnits = 40;
constexpr QSize imageUnits(35, 34);

} // namespace

ListView::ListView(QWidget *parent) : QListView(parent) {
    setModel(&rows_);
    setItemDelegate(new RowDelegate(*this));
    setUniformItemSizes(true);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollByTouch(*this);
}

void ListView::setUnits(const DialogUnits &units) {
    imageSize_ = QSize(units.width(imageUnits.width()), units.height(imageUnits.height()));
    unitRowHeight_ = units.height(rowUnits);
    arrangeRows();
}

void ListView::arrangeRows() {
    verticalScrollBar()->setSingleStep(rowHeight());
    scheduleDelayedItemsLayout();
}

void ListView::changeEvent(QEvent *event) {
    QListView::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        arrangeRows();
}

void ListView::setColumnWidth(int pixels) {
    columnWidth_ = pixels;
    scheduleDelayedItemsLayout();
}

int ListView::rowHeight() const { return std::max(unitRowHeight_, fontMetrics().height() + 2); }

QStringList ListView::rowTexts() const {
    QStringList texts;
    for (const ListRow &row : rows_.rows())
        texts.append(row.text);
    return texts;
}

int ListView::findRow(const QString &text) const {
    const QList<ListRow> &rows = rows_.rows();
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&text](const ListRow &row) { return row.text == text; });
    return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
}

void ListView::setRows(QList<ListRow> rows) {
    const bool isPressed = isTapPossible_ && pressed_.isValid();
    const QString text = rowText(pressed_.row());
    rows_.replace(std::move(rows));
    if (!isPressed)
        return;
    executeDelayedItemsLayout();
    pressed_ = indexAt(pressedAt_);
    isTapPossible_ = pressed_.isValid() && rowText(pressed_.row()) == text;
}

void ListView::removeRow(int row) {
    // Else the view would select a neighbour. While a label is edited its row stays selected.
    if (!isEditingLabel())
        selectionModel()->clear();
    rows_.remove(row);
}

void ListView::selectRow(int row) {
    if (row >= 0 && row < rowCount())
        setCurrentIndex(rows_.index(row));
    else
        selectionModel()->clear();
}

void ListView::editLabel(int row) {
    finishEditing();
    selectRow(row);
    edit(rows_.index(row));
}

void ListView::watchEditor(QLineEdit *editor, int row) {
    editor_ = editor;
    selectRow(row);
}

// The editor is still open here, and would close if a dialog took the focus.
void ListView::storeLabel(const QModelIndex &index, const QString &text) {
    edited_ = index;
    editedText_ = text;
    QMetaObject::invokeMethod(this, &ListView::reportEdited, Qt::QueuedConnection);
}

void ListView::reportEdited() {
    const int row = std::exchange(edited_, QPersistentModelIndex()).row();
    if (row < 0)
        return;
    Q_EMIT labelEdited(row, editedText_);
    if (!isEditingLabel())
        Q_EMIT labelEditEnded();
}

void ListView::finishEditing() {
    if (editor_ != nullptr) {
        commitData(editor_);
        closeEditor(editor_, QAbstractItemDelegate::NoHint);
    }
    reportEdited();
}

void ListView::cancelEditing() {
    if (editor_ != nullptr)
        closeEditor(editor_, QAbstractItemDelegate::RevertModelCache);
}

void ListView::closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint) {
    const bool isLabelEditor = editor == editor_;
    if (isLabelEditor)
        editor_ = nullptr;
    QListView::closeEditor(editor, hint);
    if (isLabelEditor && !isEditingLabel())
        Q_EMIT labelEditEnded();
}

void ListView::keyPressEvent(QKeyEvent *event) {
    const int key = event->key();
    if (editor_ != nullptr) {
        // The list ignores the keys that the editor has not used.
        event->setAccepted(!isHelp(key) && !isMenu(key));
        return;
    }
    const bool isModified =
        (event->modifiers() & (Qt::AltModifier | Qt::ControlModifier)) != Qt::NoModifier;
    bool isTaken = false;
    if (!isModified)
        Q_EMIT keyPressed(key, isTaken);
    if (isTaken)
        event->accept();
    else if (isCheckable_ && key == Qt::Key_Space && currentIndex().isValid())
        setChecked(currentIndex().row(), !isChecked(currentIndex().row()));
    else if (isModified)
        event->ignore();
    else
        moveByKey(*event);
}

// A key that leads to the current row scrolls to it.
void ListView::moveByKey(QKeyEvent &event) {
    QListView::keyPressEvent(&event);
    if (event.isAccepted())
        scrollTo(currentIndex());
}

void ListView::mousePressEvent(QMouseEvent *event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    // A tap outside an open editor only ends the editing.
    isTapPossible_ = event->button() == Qt::LeftButton && editor_ == nullptr;
    pressed_ = index;
    pressedAt_ = event->position().toPoint();
    QListView::mousePressEvent(event);
    if (!index.isValid())
        selectRow(-1);
}

void ListView::mouseReleaseEvent(QMouseEvent *event) {
    QListView::mouseReleaseEvent(event);
    const QPoint place = event->position().toPoint();
    const int way = (place - pressedAt_).manhattanLength();
    // The row may have moved or gone between press and release.
    const bool isTap = std::exchange(isTapPossible_, false) && event->button() == Qt::LeftButton &&
                       way < QGuiApplication::styleHints()->startDragDistance() &&
                       indexAt(place) == pressed_ && !isScrollingByTouch(*this);
    if (!isTap)
        return;
    if (pressed_.isValid()) {
        selectRow(pressed_.row());
        if (isCheckable_)
            setChecked(pressed_.row(), !isChecked(pressed_.row()));
    }
    Q_EMIT tapped(pressed_.row());
}

// The second press is not meant for the dialog that the first one opens.
void ListView::mouseDoubleClickEvent(QMouseEvent *event) {
    QListView::mouseDoubleClickEvent(event);
    isTapPossible_ = isTapPossible_ && isCheckable_;
}

int SelectedRow(const ListView *list) {
    if (list == nullptr || !list->selectionModel()->hasSelection())
        return -1;
    return list->currentIndex().row();
}

} // namespace tidebrook
