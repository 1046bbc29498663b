#pragma once

#include "kit/list_rows.h"
#include "kit/screen_shape.h"

#include <QBasicTimer>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QStringList>

#include <utility>

namespace tidebrook {

/// A list of rows with an image and a label each, of which at most one is selected. It is scrolled
/// by finger, wheel and keys; typing the beginning of a label goes to its row. Tapping a row
/// selects it, as does a long press or a click of the right button where the list has a menu. A
/// finger that scrolls selects nothing.
class ListView : public QListView {
    Q_OBJECT

public:
    explicit ListView(QWidget *parent);

    /// Rows are 40 units high, or more if the font needs more; images 35 by 34.
    void setUnits(const DialogUnits &units);
    /// The icons for the rows' image numbers. Their names live as long as the program.
    void setImages(const QList<const char *> &names) { images_ = names; }
    const char *image(int number) const { return images_.value(number); }
    /// The width of the rows in pixels.
    void setColumnWidth(int pixels);
    int columnWidth() const { return columnWidth_; }
    QSize imageSize() const { return imageSize_; }
    int rowHeight() const;

    int rowCount() const { return rows_.rowCount(); }
    ListRow row(int row) const { return rows_.rows().value(row); }
    QString rowText(int row) const { return rows_.rows().value(row).text; }
    /// The labels, row by row.
    QStringList rowTexts() const;
    /// The first row with exactly this label, or -1.
    int findRow(const QString &text) const;

    /// Replaces all rows, and selects none. A tap in progress still opens its row if that stays at
    /// its place.
    void setRows(QList<ListRow> rows);
    /// Changes the details of rows with the same labels, and moves nothing. False for other labels.
    bool updateRows(const QList<ListRow> &rows) { return rows_.update(rows); }
    void insertRow(int row, const ListRow &content) { rows_.insert(row, content); }
    void removeRow(int row);
    void setRowText(int row, const QString &text) { rows_.change(row, &ListRow::text, text); }
    void setRowDetail(int row, const QString &text) { rows_.change(row, &ListRow::detail, text); }

    /// What the list says while it has no row; it wraps. None by default.
    void setEmptyText(const QString &text);

    /// Whether rows are to be selected for `menuWanted`.
    void setHasMenu(bool hasMenu) { hasMenu_ = hasMenu; }

    /// Gives every row a check box instead of its image, which a tap and the space bar turn.
    void setCheckable(bool checkable) { isCheckable_ = checkable; }
    bool isCheckable() const { return isCheckable_; }
    bool isChecked(int row) const { return rows_.rows().value(row).isChecked; }
    void setChecked(int row, bool checked) { rows_.change(row, &ListRow::isChecked, checked); }

    /// It has the focus, or gets it back from a menu or a box that lies over its screen.
    bool looksFocused() const;
    /// Selects and focuses a row and scrolls to it; a number without a row selects none.
    void selectRow(int row);

    void setSpeech(std::function<QString(const ListRow &)> speech) {
        rows_.setSpeech(std::move(speech));
    }

    void setLabelsEditable(bool editable) { rows_.setEditable(editable); }
    /// The length limit in UTF-16 units; to be set before a label is edited.
    void setLabelLimit(int units) { labelLimit_ = units; }
    int labelLimit() const { return labelLimit_; }
    /// Opens the editor of a row's label, with all of it selected.
    void editLabel(int row);
    /// True from there until the result was reported, or the editing cancelled.
    bool isEditingLabel() const { return editor_ != nullptr || edited_.isValid(); }
    /// Ends the editing as Enter does, and emits `labelEdited` before it returns.
    void finishEditing();
    /// Ends the editing as Escape does.
    void cancelEditing();

    /// Whether a tap on it counts: it is enabled, and nothing lies over its screen.
    bool canBeTapped() const;

Q_SIGNALS:
    /// A key was pressed. When a receiver sets `isTaken`, the list ignores the key.
    void keyPressed(int key, bool &isTaken);
    /// A row was tapped and is selected; -1 for a tap outside of the rows.
    void tapped(int row);
    /// A menu is wanted, for the row that is selected now or, where there was none, for the list.
    /// It should lie beside this place on the screen.
    void menuWanted(const QRect &place);
    /// A label was edited, and is still unchanged in the row. The editor is closed: a receiver may
    /// open dialogs.
    void labelEdited(int row, const QString &text);
    /// The editing was finished and reported, or cancelled.
    void labelEditEnded();

protected:
    void closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint) override;
    void resizeEvent(QResizeEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    friend class RowDelegate;
    void arrangeRows();
    void moveByKey(QKeyEvent &event);
    void describe();
    bool isNear(const QPoint &place) const;
    void askForMenu(const QPoint &place);
    void watchEditor(QLineEdit *editor, int row);
    void storeLabel(const QModelIndex &index, const QString &text);
    void reportEdited();

    ListRows rows_;
    QList<const char *> images_;
    QSize imageSize_;
    int columnWidth_ = 0;
    bool isCheckable_ = false;
    int unitRowHeight_ = 0;

    int labelLimit_ = 0;
    QPointer<QLineEdit> editor_;
    QPersistentModelIndex edited_; // the row whose new text is not reported yet
    QString editedText_;

    QPersistentModelIndex pressed_;
    QPoint pressedAt_;
    bool isTapPossible_ = false;
    bool hasMenu_ = false;
    QBasicTimer hold_; // runs while a press may become a long one
    QString emptyText_;
};

/// The selected row; -1 without one, and for no list.
int SelectedRow(const ListView *list);

} // namespace tidebrook
