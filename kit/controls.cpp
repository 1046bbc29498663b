#include "kit/controls.h"

#include "kit/list_view.h"
#include "kit/page/contrast.h"
#include "kit/page/text_page.h"
#include "kit/touch_scrolling.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QRadioButton>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <QTabBar>

namespace tidebrook {

namespace {

/// A label in another colour than text: a title in that of the highlight, which is made for a
/// ground, or a remark in grey.
class TintedLabel : public QLabel {
public:
    TintedLabel(bool isTitle, QWidget *parent) : QLabel(parent), isTitle_(isTitle) {}

protected:
    void paintEvent(QPaintEvent *) override {
        const QColor ground = palette().color(QPalette::Window);
        QPainter painter(this);
        painter.setPen(
            readableOn(ground, isTitle_ ? palette().color(QPalette::Highlight) : grey(ground)));
        painter.drawText(contentsRect(), Qt::AlignLeading | Qt::AlignVCenter | Qt::TextWordWrap,
                         text());
    }

private:
    QColor grey(const QColor &ground) const {
        const QColor full = palette().color(QPalette::WindowText);
        const auto mix = [](int one, int other) { return (2 * one + other) / 3; };
        return {mix(full.red(), ground.red()), mix(full.green(), ground.green()),
                mix(full.blue(), ground.blue())};
    }

    const bool isTitle_;
};

QWidget *makeLabel(const ControlTemplate &item, QWidget *parent) {
    const bool isTitle = (item.styleBits & StyleHighlight) != 0;
    const bool isTinted = isTitle || (item.styleBits & StyleQuiet) != 0;
    QLabel *label = isTinted ? new TintedLabel(isTitle, parent) : new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    if ((item.styleBits & StyleCentred) != 0)
        label->setAlignment(Qt::AlignCenter);
    return label;
}

QWidget *makeDropDownList(QWidget *parent) {
    auto *box = new QComboBox(parent);
    // This delegate asks the style for the height of an entry, which is enough for a finger.
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

} // namespace

QWidget *makeControl(const ControlTemplate &item, QWidget *parent) {
    switch (item.kind) {
    case ControlKind::Label:
    case ControlKind::Image:
        return makeLabel(item, parent);
    case ControlKind::CheckBox:
        return new QCheckBox(parent);
    case ControlKind::RadioButton:
        return new QRadioButton(parent);
    case ControlKind::Edit:
        return new QLineEdit(parent);
    case ControlKind::DropDownList:
        return makeDropDownList(parent);
    case ControlKind::ListView:
        return makeListView(item, parent);
    case ControlKind::Tabs:
        return makeTabs(parent);
    case ControlKind::Pages:
        return new QStackedWidget(parent);
    case ControlKind::Page:
        return makePage(parent);
    }
    return nullptr;
}

} // namespace tidebrook
