#pragma once

#include <QAccessibleWidget>
#include <QHash>
#include <QObject>

namespace tidebrook {

class ListView;

/// A list as screen readers see it: its rows, each with the words of the list's model. The actions
/// of a row open it as a tap does, select it, or open the screen's menu for it.
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
    void announceChange(int row) const;

    mutable QHash<int, QAccessible::Id> rows_; // those that were asked for
    QObject scope_;                            // of the connections
};

/// Reports to screen readers which row of a list has the focus, after the list itself is reported.
void announceFocusedRow(ListView &list);

} // namespace tidebrook
