#pragma once

#include <QAccessibleWidget>
#include <QHash>
#include <QObject>

namespace tidebrook {

class ListView;

/// What a screen reader is told of a list: its rows, each as the list's model words it. A row is
/// taken as by a tap, selected without that, or has the screen's menu opened for it.
class AccessibleList : public QAccessibleWidget {
public:
    explicit AccessibleList(ListView &list);
    ~AccessibleList() override;

    /// The rows, and behind them the editor of a label while it is open.
    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;

private:
    ListView &list() const;
    QWidget *editor() const;
    void forgetRows();
    void tellChanged(int row) const;

    mutable QHash<int, QAccessible::Id> rows_; // those that were asked for
    QObject scope_;                            // of the connections
};

/// Tells screen readers which row of a list has the focus, once the list itself was told of.
void tellFocusedRow(ListView &list);

} // namespace tidebrook
