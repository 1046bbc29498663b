#pragma once

#include <QStyledItemDelegate>

namespace tidebrook {

class ListView;
struct ListRow;

/// Paints the rows of a list view, and edits their labels in place. Tabs, line ends and the like
/// become blanks in a label.
class RowDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit RowDelegate(ListView &list);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;

protected:
    const ListView &list() const { return list_; }

    /// The palette's colour of a row's ground. The selection of a list without the focus is less
    /// prominent.
    QPalette::ColorRole groundOf(const QStyleOptionViewItem &option) const;
    /// Fills a row with it, and draws the line below the row.
    void paintGround(QPainter &painter, const QStyleOptionViewItem &option) const;

private:
    QRect labelRect(const QStyleOptionViewItem &option) const;
    QRect imageRect(const QStyleOptionViewItem &option) const;
    void paintCheckMark(QPainter &painter, const QStyleOptionViewItem &option,
                        bool isChecked) const;
    void paintTexts(QPainter &painter, const QStyleOptionViewItem &option,
                    const ListRow &row) const;

    ListView &list_;
};

} // namespace tidebrook
