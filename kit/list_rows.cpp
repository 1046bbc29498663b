#include "kit/list_rows.h"

#include <algorithm>
#include <utility>

namespace tidebrook {

int ListRows::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant ListRows::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const ListRow &row = rows_[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return row.text;
    case Qt::AccessibleTextRole:
        if (speech_)
            return speech_(row);
        return row.detail.isEmpty() ? row.text : QString(row.text + u", " + row.detail);
    default:
        return {};
    }
}

Qt::ItemFlags ListRows::flags(const QModelIndex &index) const {
    Qt::ItemFlags flags = QAbstractListModel::flags(index);
    flags.setFlag(Qt::ItemIsEditable, isEditable_ && index.isValid());
    return flags;
}

void ListRows::replace(QList<ListRow> rows) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

bool ListRows::update(const QList<ListRow> &rows) {
    if (!std::ranges::equal(rows_, rows, {}, &ListRow::text, &ListRow::text))
        return false;
    for (int i = 0; i < rowCount(); ++i) {
        if (std::exchange(rows_[i], rows[i]) != rows[i])
            Q_EMIT dataChanged(index(i), index(i));
    }
    return true;
}

void ListRows::insert(int row, const ListRow &content) {
    beginInsertRows({}, row, row);
    rows_.insert(row, content);
    endInsertRows();
}

void ListRows::remove(int row) {
    beginRemoveRows({}, row, row);
    rows_.removeAt(row);
    endRemoveRows();
}

} // namespace tidebrook

#include "moc_list_rows.cpp"
