#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QString>

namespace tidebrook {

/// A row of a list: its label, what stands at its bottom right, which of the list's images it
/// has, and in a list of check boxes, whether it is checked.
struct ListRow {
    QString text;
    QString detail = {};
    int image = 0;
    bool isChecked = false;
};

/// The rows of a list view.
class ListRows : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    const QList<ListRow> &rows() const { return rows_; }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    void setEditable(bool editable) { isEditable_ = editable; }

    void replace(QList<ListRow> rows);
    void insert(int row, const ListRow &content);
    void remove(int row);
    void change(int row, const ListRow &content);

private:
    QList<ListRow> rows_;
    bool isEditable_ = false;
};

} // namespace tidebrook
