#pragma once

#include "kit/list_rows.h"
#include "kit/screen_shape.h"

#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QStringList>

namespace tidebrook {

/// A list of rows with an image and a label each, of which at most one is selected. It is scrolled
/// by finger, wheel and keys; typing the beginning of a label goes to its row.
class ListView : public QListView {
    Q_OBJECT

public:
    explicit ListView(QWidget *parent);

    // --- looks ---

    /// Rows are 40 units high, or more where the font takes more; images 35 by 34.
    void setUnits(const DialogUnits &units);
    /// The icons that the rows' image numbers stand for. Their names live as long as the program.
    void setImages(const QList<const char *> &names) { images_ = names; }
    const char *image(int number) const { return images_.value(number); }
    /// The width in pixels in which rows are painted.
    void setColumnWidth(int pixels);
    int columnWidth() const { return columnWidth_; }
    QSize imageSize() const { return imageSize_; }
    int rowHeight() const;

    // --- rows ---

    int rowCount() const { return rows_.rowCount(); }
    ListRow row(int row) const { return rows_.rows().value(row); }
    QString rowText(int row) const { return rows_.rows().value(row).text; }
    /// The labels, row by row.
    QStringList rowTexts() const;
    /// The first row with exactly this label, or -1.
    int findRow(const QString &text) const;

    /// Replaces all rows; none is selected then. A tap that is under way still opens what it was
    /// begun on, if that stays where it is.
    void setRows(QList<ListRow> rows);
    void insertRow(int row, const ListRow &content) { rows_.insert(row, content); }
    void removeRow(int row);
    void setRowText(int row, const QString &text);
    void setRowDetail(int row, const QString &detail);

    /// Gives every row a check box in place of its image: a tap on the row and the space bar turn
    /// its check.
    void setCheckable(bool checkable) { isCheckable_ = checkable; }
    bool isCheckable() const { return isCheckable_; }
    bool isChecked(int row) const { return rows_.rows().value(row).isChecked; }
    void setChecked(int row, bool isChecked);

    /// Selects and focuses a row and brings it into view; a row that there is not selects none.
    void selectRow(int row);

    // --- editing a label in place ---

    void setLabelsEditable(bool editable) { rows_.setEditable(editable); }
    /// Labels are cut to this many UTF-16 units while they are typed.
    void setLabelLimit(int units) { labelLimit_ = units; }
    int labelLimit() const { return labelLimit_; }
    /// Opens the editor of a row's label, with all of it selected.
    void editLabel(int row);
    /// From there until what was typed is told, or the editing was broken off.
    bool isEditingLabel() const { return editor_ != nullptr || edited_.isValid(); }
    /// The open editor, or nullptr.
    QLineEdit *labelEditor() const { return editor_; }
    /// Ends the editing as Enter does, and tells `labelEdited` before it returns.
    void finishEditing();
    /// Ends the editing as Escape does.
    void cancelEditing();

Q_SIGNALS:
    /// A key was pressed on the list; one that the receiver takes does nothing else.
    void keyPressed(int key, bool &isTaken);
    /// A row was tapped, and is selected; -1 where there is none.
    void tapped(int row);
    /// A label was edited to this text, which the row does not have yet. Not told when the editing
    /// was broken off. A receiver may open dialogs: the editor is gone.
    void labelEdited(int row, const QString &text);
    /// The editing is over, however that came, and what came of it was told.
    void labelEditEnded();

protected:
    void closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    friend class RowDelegate;
    void arrangeRows();
    void moveByKey(QKeyEvent &event);
    void watchEditor(QLineEdit *editor, int row);
    void storeLabel(const QModelIndex &index, const QString &text);
    void tellEdited();

    ListRows rows_;
    QList<const char *> images_;
    QSize imageSize_;
    int columnWidth_ = 0;
    bool isCheckable_ = false;
    int unitRowHeight_ = 0;

    int labelLimit_ = 0;
    QPointer<QLineEdit> editor_;
    QPersistentModelIndex edited_; // the row whose text waits to be told
    QString editedText_;

    QPersistentModelIndex pressed_;
    QPoint pressedAt_;
    bool isTapPossible_ = false;
};

/// The selected row, or -1; also for a list that is not there.
int SelectedRow(const ListView *list);

} // namespace tidebrook
