#include "kit/controls.h"

#include "kit/list_view.h"
#include "kit/page/text_page.h"
#include "kit/touch_scrolling.h"
#include "kit/wrapping_buttons.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <QTabBar>

namespace tidebrook {

namespace {

QWidget *makeLabel(const ControlTemplate &item, QWidget *parent) {
    auto *label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    if ((item.styleBits & StyleCentred) != 0)
        label->setAlignment(Qt::AlignCenter);
    if ((item.styleBits & StyleHighlight) != 0)
        label->setForegroundRole(QPalette::Highlight);
    return label;
}

QWidget *makeDropDownList(QWidget *parent) {
    auto *box = new QComboBox(parent);
    // The delegate of its own asks the style how high an entry is, which knows about fingers.
    box->setItemDelegate(new QStyledItemDelegate(box));
    scrollByTouch(*box->view());
    return box;
}

QWidget *makeTabs(QWidget *parent) {
    auto *tabs = new QTabBar(parent);
    tabs->setShape(QTabBar::RoundedSouth);
    tabs->setExpanding(true);
    tabs->setDrawBase(false);
    return tabs;
}

QWidget *makeListView(const ControlTemplate &item, QWidget *parent) {
    auto *list = new ListView(parent);
    list->setLabelsEditable((item.styleBits & StyleEditLabels) != 0);
    list->setCheckable((item.styleBits & StyleCheckBoxes) != 0);
    return list;
}

QWidget *makePage(QWidget *parent) {
    auto *page = new TextPage(parent);
    scrollByTouch(*page);
    return page;
}

QWidget *makeWidget(const ControlTemplate &item, QWidget *parent) {
    switch (item.kind) {
    case ControlKind::Label:
    case ControlKind::Image:
        return makeLabel(item, parent);
    case ControlKind::PushButton:
        return new QPushButton(parent);
    case ControlKind::CheckBox:
        return new WrappingCheckBox(parent);
    case ControlKind::RadioButton:
        return new WrappingRadioButton(parent);
    case ControlKind::Edit:
        return new QLineEdit(parent);
    case ControlKind::DropDownList:
        return makeDropDownList(parent);
    case ControlKind::ListBox:
        return new QListWidget(parent);
    case ControlKind::ListView:
        return makeListView(item, parent);
    case ControlKind::Tabs:
        return makeTabs(parent);
    case ControlKind::Pages:
        return new QStackedWidget(parent);
    case ControlKind::Page:
        return makePage(parent);
    }
    return new QWidget(parent);
}

} // namespace

QWidget *makeControl(const ControlTemplate &item, QWidget *parent) {
    QWidget *control = makeWidget(item, parent);
    if (item.text != nullptr)
        setControlText(*control, QString::fromUtf16(item.text));
    return control;
}

void setControlText(QWidget &control, const QString &text) {
    if (auto *label = qobject_cast<QLabel *>(&control)) {
        label->setText(text);
    } else if (auto *button = qobject_cast<QAbstractButton *>(&control)) {
        QString shown = text;
        button->setText(shown.replace(QLatin1Char('&'), QLatin1String("&&")));
    }
}

} // namespace tidebrook
