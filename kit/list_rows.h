#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QString>

#include <functional>
#include <utility>

namespace tidebrook {

struct ListRow {
    QString text;
    QString detail = {};    ///< at the bottom right
    int image = 0;          ///< the number of one of the list's images
    bool isChecked = false; ///< in a list of check boxes

    bool operator==(const ListRow &) const = default;
};

class ListRows : public QAbstractListModel {
    Q_OBJECT

public:
    const QList<ListRow> &rows() const { return rows_; }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// What a screen reader says of a row, instead of its text and detail.
    void setSpeech(std::function<QString(const ListRow &)> speech) { speech_ = std::move(speech); }
    void setEditable(bool editable) { isEditable_ = editable; }

    void replace(QList<ListRow> rows);
    /// Changes what differs. False, and nothing is done, when the texts are others.
    bool update(const QList<ListRow> &rows);
    void insert(int row, const ListRow &content);
    void remove(int row);
    template <class Value> void change(int row, Value ListRow::*part, const Value &value) {
        rows_[row].*part = value;
        Q_EMIT dataChanged(index(row), index(row));
    }

private:
    QList<ListRow> rows_;
    std::function<QString(const ListRow &)> speech_;
    bool isEditable_ = false;
};

} // namespace tidebrook
