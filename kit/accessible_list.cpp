#include "kit/accessible_list.h"

#include "kit/list_view.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>

namespace tidebrook {

namespace {

void act(ListView &list, const QPersistentModelIndex &index, const QString &action) {
    if (!index.isValid() || !list.canBeTapped())
        return;
    if (list.isEditingLabel()) // as by a tap outside of the editor
        return list.finishEditing();
    const int row = index.row();
    list.setFocus();
    list.selectRow(row);
    if (action == QAccessibleActionInterface::showMenuAction()) {
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Menu, Qt::NoModifier);
        QCoreApplication::sendEvent(&list, &key);
    } else if (action != QAccessibleActionInterface::setFocusAction()) {
        if (list.isCheckable())
            list.setChecked(row, !list.isChecked(row));
        Q_EMIT list.tapped(row);
    }
}

class AccessibleRow : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    AccessibleRow(ListView &list, int row) : list_(&list), index_(list.model()->index(row, 0)) {}

    int row() const { return index_.row(); }

    bool isValid() const override { return list_ && index_.isValid(); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return parent()->window(); }
    QAccessibleInterface *parent() const override {
        return QAccessible::queryAccessibleInterface(list_);
    }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? index_.data(Qt::AccessibleTextRole).toString()
                                         : QString();
    }
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override {
        const QRect place = list_->visualRect(index_);
        return {list_->viewport()->mapToGlobal(place.topLeft()), place.size()};
    }
    QAccessible::Role role() const override {
        return list_->isCheckable() ? QAccessible::CheckBox : QAccessible::ListItem;
    }
    QAccessible::State state() const override;

    QStringList actionNames() const override {
        return {list_->isCheckable() ? toggleAction() : pressAction(), showMenuAction(),
                setFocusAction()};
    }
    // What is opened may run until the user leaves it, while a screen reader waits for an answer.
    void doAction(const QString &name) override {
        QMetaObject::invokeMethod(
            list_, [&list = *list_, index = index_, name] { act(list, index, name); },
            Qt::QueuedConnection);
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

    void *interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface
                   ? static_cast<QAccessibleActionInterface *>(this)
                   : nullptr;
    }

private:
    const QPointer<ListView> list_;
    const QPersistentModelIndex index_;
};

QAccessible::State AccessibleRow::state() const {
    QAccessible::State state;
    state.disabled = !list_->isEnabled();
    state.invisible = !list_->isVisible();
    state.offscreen = !list_->viewport()->rect().intersects(list_->visualRect(index_));
    state.focusable = true;
    state.focused = list_->hasFocus() && list_->currentIndex() == index_;
    state.selectable = true;
    state.selected = list_->selectionModel()->isSelected(index_);
    state.checkable = list_->isCheckable();
    state.checked = list_->isChecked(row());
    return state;
}

} // namespace

AccessibleList::AccessibleList(ListView &list) : QAccessibleWidget(&list, QAccessible::List) {
    const QAbstractItemModel *model = list.model();
    const auto forget = [this] { forgetRows(); };
    QObject::connect(model, &QAbstractItemModel::modelReset, &scope_, forget);
    QObject::connect(model, &QAbstractItemModel::rowsInserted, &scope_, forget);
    QObject::connect(model, &QAbstractItemModel::rowsRemoved, &scope_, forget);
    QObject::connect(model, &QAbstractItemModel::dataChanged, &scope_,
                     [this](const QModelIndex &first, const QModelIndex &last) {
                         for (int row = first.row(); row <= last.row(); ++row)
                             announceChange(row);
                     });
}

AccessibleList::~AccessibleList() { forgetRows(); }

ListView &AccessibleList::list() const { return *qobject_cast<ListView *>(object()); }

QWidget *AccessibleList::editor() const {
    return list().isEditingLabel() ? list().viewport()->findChild<QLineEdit *>() : nullptr;
}

int AccessibleList::childCount() const { return list().rowCount() + (editor() != nullptr ? 1 : 0); }

QAccessibleInterface *AccessibleList::child(int index) const {
    if (index < 0 || index >= list().rowCount())
        return QAccessible::queryAccessibleInterface(
            index == list().rowCount() ? static_cast<QObject *>(editor()) : nullptr);
    if (!rows_.contains(index))
        rows_.insert(index,
                     QAccessible::registerAccessibleInterface(new AccessibleRow(list(), index)));
    return QAccessible::accessibleInterface(rows_.value(index));
}

int AccessibleList::indexOfChild(const QAccessibleInterface *child) const {
    if (const auto *row = dynamic_cast<const AccessibleRow *>(child))
        return row->row();
    return child != nullptr && child->object() == editor() ? list().rowCount() : -1;
}

QAccessibleInterface *AccessibleList::childAt(int x, int y) const {
    return child(list().indexAt(list().viewport()->mapFromGlobal(QPoint(x, y))).row());
}

// Their numbers, or what stands in them, may be others now.
void AccessibleList::forgetRows() {
    for (const QAccessible::Id id : std::as_const(rows_))
        QAccessible::deleteAccessibleInterface(id);
    rows_.clear();
}

void AccessibleList::announceChange(int row) const {
    if (!rows_.contains(row))
        return;
    QAccessible::State changed;
    changed.checked = list().isCheckable();
    QAccessibleEvent name(child(row), QAccessible::NameChanged);
    QAccessibleStateChangeEvent state(child(row), changed);
    QAccessible::updateAccessibility(&name);
    QAccessible::updateAccessibility(&state);
}

void announceFocusedRow(ListView &list) {
    if (!QAccessible::isActive())
        return;
    const auto announce = [&list] {
        if (!list.hasFocus() || !list.currentIndex().isValid())
            return;
        QAccessibleEvent event(&list, QAccessible::Focus);
        event.setChild(list.currentIndex().row());
        QAccessible::updateAccessibility(&event);
    };
    QMetaObject::invokeMethod(&list, announce, Qt::QueuedConnection);
}

} // namespace tidebrook
