#include "kit/accessible_parts.h"

#include "kit/accessible_list.h"
#include "kit/accessible_page.h"
#include "kit/header_bar.h"
#include "kit/layer.h"
#include "kit/list_view.h"
#include "kit/menu_bar.h"
#include "kit/message_box.h"
#include "kit/page/text_page.h"
#include "kit/progress_line.h"
#include "kit/screen_stack.h"
#include "res/strings.h"

#include <QMenu>

namespace tidebrook {

namespace {

/// The progress line: busy while no steps are known.
class AccessibleProgress : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit AccessibleProgress(ProgressLine &line)
        : QAccessibleWidget(&line, QAccessible::ProgressBar) {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? resourceString(atWorkString) : QString();
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.busy = line().isAtWork() && line().steps() == 0;
        state.readOnly = true;
        return state;
    }
    QVariant currentValue() const override { return line().stepsDone(); }
    void setCurrentValue(const QVariant &) override {}
    QVariant maximumValue() const override { return line().steps(); }
    QVariant minimumValue() const override { return 0; }
    QVariant minimumStepSize() const override { return 1; }
    void *interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface *>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }

private:
    const ProgressLine &line() const { return *qobject_cast<ProgressLine *>(object()); }
};

/// The soft keys, and behind them their menu while it is open: Qt leaves popups out of its tree.
class AccessibleKeys : public QAccessibleWidget {
public:
    explicit AccessibleKeys(MenuBar &bar) : QAccessibleWidget(&bar, QAccessible::ToolBar) {}

    int childCount() const override {
        return QAccessibleWidget::childCount() + (menu() != nullptr ? 1 : 0);
    }
    QAccessibleInterface *child(int index) const override {
        return index == QAccessibleWidget::childCount()
                   ? QAccessible::queryAccessibleInterface(menu())
                   : QAccessibleWidget::child(index);
    }
    int indexOfChild(const QAccessibleInterface *child) const override {
        return child != nullptr && child->object() == menu()
                   ? QAccessibleWidget::childCount()
                   : QAccessibleWidget::indexOfChild(child);
    }

private:
    QObject *menu() const {
        auto *menu = widget()->findChild<QMenu *>({}, Qt::FindDirectChildrenOnly);
        return menu != nullptr && menu->isVisible() ? menu : nullptr;
    }
};

QAccessible::Role roleOf(const QObject *part) {
    if (qobject_cast<const ScreenStack *>(part) != nullptr)
        return QAccessible::Window;
    if (qobject_cast<const MessageBox *>(part) != nullptr)
        return QAccessible::AlertMessage;
    if (qobject_cast<const Layer *>(part) != nullptr)
        return QAccessible::Dialog;
    if (qobject_cast<const HeaderBar *>(part) != nullptr)
        return QAccessible::ToolBar;
    return QAccessible::NoRole;
}

QAccessibleInterface *makeInterface(const QString &, QObject *part) {
    if (auto *list = qobject_cast<ListView *>(part))
        return new AccessibleList(*list);
    if (auto *page = qobject_cast<TextPage *>(part))
        return new AccessiblePage(*page);
    if (auto *line = qobject_cast<ProgressLine *>(part))
        return new AccessibleProgress(*line);
    if (auto *bar = qobject_cast<MenuBar *>(part))
        return new AccessibleKeys(*bar);
    const QAccessible::Role role = roleOf(part);
    return role != QAccessible::NoRole ? new QAccessibleWidget(static_cast<QWidget *>(part), role)
                                       : nullptr;
}

} // namespace

void installAccessibleParts() { QAccessible::installFactory(&makeInterface); }

} // namespace tidebrook
