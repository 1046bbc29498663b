#include "kit/list_view.h"

#include "kit/accessible_list.h"
#include "kit/keys.h"
#include "kit/layer.h"
#include "kit/row_delegate.h"
#include "kit/screen_stack.h"
#include "kit/touch_scrolling.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QStyleHints>

#include <algorithm>
#include <utility>

namespace tidebrook {

namespace {

constexpr int rowUnits = 40;
constexpr QSize imageUnits(35, 34);
constexpr float emptyTextAlpha = 0.7F;

bool isMove(int key) {
    return key == Qt::Key_Home || key == Qt::Key_End || key == Qt::Key_Up || key == Qt::Key_Down ||
           key == Qt::Key_PageUp || key == Qt::Key_PageDown;
}

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
    connect(&rows_, &QAbstractItemModel::modelReset, this, &ListView::describe);
    connect(&rows_, &QAbstractItemModel::rowsInserted, this, &ListView::describe);
    connect(&rows_, &QAbstractItemModel::rowsRemoved, this, &ListView::describe);
}

void ListView::setUnits(const DialogUnits &units) {
    imageSize_ = QSize(units.pixels(imageUnits.width()), units.pixels(imageUnits.height()));
    unitRowHeight_ = units.pixels(rowUnits);
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

bool ListView::looksFocused() const {
    const Layer *layer = Layer::of(*this);
    const bool isBelowMenu =
        QApplication::activePopupWidget() != nullptr && window()->focusWidget() == this;
    return hasFocus() || isBelowMenu || (layer != nullptr && layer->focusBefore() == this);
}

void ListView::editLabel(int row) {
    finishEditing();
    selectRow(row);
    edit(rows_.index(row));
}

void ListView::watchEditor(QLineEdit *editor, int row) {
    editor_ = editor;
    editor->setAccessibleName(rowText(row));
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
    // Tab ends the editing, too: it must not open the label of another row.
    const bool isStep = hint == QAbstractItemDelegate::EditNextItem ||
                        hint == QAbstractItemDelegate::EditPreviousItem;
    QListView::closeEditor(editor, isStep ? QAbstractItemDelegate::NoHint : hint);
    if (isLabelEditor && !isEditingLabel())
        Q_EMIT labelEditEnded();
}

// A turned screen keeps the selected row in sight, unless the reader has scrolled away from it.
void ListView::resizeEvent(QResizeEvent *event) {
    const QRect before(QPoint(), event->oldSize());
    const bool isInSight = before.isEmpty() || before.intersects(visualRect(currentIndex()));
    QListView::resizeEvent(event);
    if (isInSight)
        scrollTo(currentIndex());
}

void ListView::focusInEvent(QFocusEvent *event) {
    QListView::focusInEvent(event);
    announceFocusedRow(*this);
}

void ListView::keyPressEvent(QKeyEvent *event) {
    const int key = event->key();
    if (editor_ != nullptr) {
        // The list ignores the keys that the editor has not used.
        event->setAccepted(!isHelp(key) && !isMenu(key));
        if (isBack(key))
            cancelEditing();
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

// A key that leads to the current row scrolls to it, also where it is the current one already.
void ListView::moveByKey(QKeyEvent &event) {
    QListView::keyPressEvent(&event);
    if (event.isAccepted() || isMove(event.key())) {
        event.accept();
        stopScrollingByTouch(*this);
        scrollTo(currentIndex());
    }
}

// What is pressed is not selected yet: a finger may be about to scroll.
void ListView::mousePressEvent(QMouseEvent *event) {
    const bool isLeft = event->button() == Qt::LeftButton;
    // A tap outside an open editor only ends the editing.
    isTapPossible_ = isLeft && editor_ == nullptr;
    pressedAt_ = event->position().toPoint();
    pressed_ = indexAt(pressedAt_);
    if (isLeft && hasMenu_)
        hold_.start(QGuiApplication::styleHints()->mousePressAndHoldInterval(), this);
}

bool ListView::canBeTapped() const {
    const Layer *layer = Layer::of(*this);
    return isVisible() && isEnabled() && (layer == nullptr || layer->stack().top() == layer);
}

bool ListView::isNear(const QPoint &place) const {
    const int way = (place - pressedAt_).manhattanLength();
    return way < QGuiApplication::styleHints()->startDragDistance();
}

void ListView::mouseMoveEvent(QMouseEvent *event) {
    if (!isNear(event->position().toPoint()))
        hold_.stop();
}

void ListView::mouseReleaseEvent(QMouseEvent *event) {
    hold_.stop();
    const QPoint place = event->position().toPoint();
    // The row may have moved or gone between press and release.
    const bool isTap = std::exchange(isTapPossible_, false) && event->button() == Qt::LeftButton &&
                       isNear(place) && indexAt(place) == pressed_ && !isScrollingByTouch(*this) &&
                       canBeTapped();
    if (!isTap)
        return;
    selectRow(pressed_.row());
    if (isCheckable_ && pressed_.isValid())
        setChecked(pressed_.row(), !isChecked(pressed_.row()));
    Q_EMIT tapped(pressed_.row());
}

// The second press is not meant for the dialog that the first one opens.
void ListView::mouseDoubleClickEvent(QMouseEvent *event) {
    mousePressEvent(event);
    isTapPossible_ = isTapPossible_ && isCheckable_;
    hold_.stop();
}

void ListView::contextMenuEvent(QContextMenuEvent *event) {
    if (hasMenu_ && event->reason() == QContextMenuEvent::Mouse)
        askForMenu(event->pos());
    else
        event->ignore(); // the dialog has a key for its menu
}

void ListView::timerEvent(QTimerEvent *event) {
    if (event->timerId() != hold_.timerId())
        return QListView::timerEvent(event);
    hold_.stop();
    if (isTapPossible_ && !isScrollingByTouch(*this) && canBeTapped())
        askForMenu(pressedAt_);
}

void ListView::askForMenu(const QPoint &place) {
    isTapPossible_ = false;
    QRect beside(place, QSize(1, 1));
    if (const QModelIndex index = indexAt(place); index.isValid()) {
        selectRow(index.row());
        beside = visualRect(index);
    }
    Q_EMIT menuWanted({viewport()->mapToGlobal(beside.topLeft()), beside.size()});
}

void ListView::setEmptyText(const QString &text) {
    emptyText_ = text;
    describe();
}

void ListView::describe() {
    setAccessibleDescription(rowCount() == 0 ? emptyText_ : QString());
    viewport()->update();
}

void ListView::paintEvent(QPaintEvent *event) {
    QListView::paintEvent(event);
    if (rowCount() > 0)
        return;
    QColor colour = palette().color(QPalette::Text);
    colour.setAlphaF(emptyTextAlpha);
    QPainter painter(viewport());
    painter.setPen(colour);
    const int margin = rowHeight() / 2;
    painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, emptyText_);
}

int SelectedRow(const ListView *list) {
    if (list == nullptr || !list->selectionModel()->hasSelection())
        return -1;
    return list->currentIndex().row();
}

} // namespace tidebrook

#include "moc_list_view.cpp"
