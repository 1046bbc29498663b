#include "kit/form.h"

#include "kit/controls.h"
#include "kit/icon.h"
#include "kit/list_view.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>

namespace tidebrook {

namespace {

void refreshContent(QWidget &control, const ControlTemplate &item) {
    if (item.icon != nullptr) {
        if (auto *label = qobject_cast<QLabel *>(&control))
            label->setPixmap(icon(item.icon, control.size(), control.palette()));
    } else if (item.text != nullptr) {
        setControlText(control, QString::fromUtf16(item.text));
    } else if (auto *box = qobject_cast<QComboBox *>(&control)) {
        box->setCurrentIndex(box->currentIndex());
    } else if (auto *list = qobject_cast<QListView *>(&control);
               list && list->currentIndex().isValid()) {
        list->scrollTo(list->currentIndex());
    }
}

} // namespace

Form::Form(int templateId, QWidget *parent) : QWidget(parent) {
    const DialogTemplate *dialog = dialogTemplate(templateId);
    if (dialog == nullptr)
        return;
    QFont templateFont = font();
    templateFont.setPointSize(dialog->fontPoints);
    setFont(templateFont);
    QString label;
    for (const ControlTemplate &item : dialog->controls) {
        QWidget *control = makeControl(item, this);
        if (item.kind == ControlKind::Label)
            label = QString::fromUtf16(item.text).remove(QLatin1Char(':'));
        else if (item.text == nullptr)
            control->setAccessibleName(label);
        if (!controls_.contains(item.id))
            controls_.insert(item.id, control);
    }
}

bool RelayoutFromTemplate(Form &form, int templateId, const DialogUnits &units) {
    const DialogTemplate *dialog = dialogTemplate(templateId);
    if (dialog == nullptr)
        return false;
    int anonymous = 0;
    for (const ControlTemplate &item : dialog->controls) {
        QWidget *control = form.control(item.id);
        if (control == nullptr)
            return false;
        if (auto *list = qobject_cast<ListView *>(control))
            list->setUnits(units);
        control->setGeometry(units.rect(item.rect, form.unitOrigin()));
        refreshContent(*control, item);
        anonymous += item.id == anonymousControl;
    }
    return anonymous < 2;
}

} // namespace tidebrook
