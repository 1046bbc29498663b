#include "kit/form.h"

#include "kit/controls.h"
#include "kit/icon.h"
#include "kit/list_view.h"

#include <QAbstractButton>
#include <QLabel>

namespace tidebrook {

namespace {

// Shows an ampersand instead of making a mnemonic of it.
void setButtonText(QAbstractButton &button, QString text) {
    button.setText(text.replace(QLatin1Char('&'), QLatin1String("&&")));
}

void refreshContent(QWidget &control, const ControlTemplate &item, bool isWide) {
    const QString text = QString::fromUtf16(isWide ? item.wideText : item.text);
    auto *label = qobject_cast<QLabel *>(&control);
    if (label != nullptr && item.icon != nullptr)
        label->setPixmap(icon(item.icon, control.size(), control.palette()));
    else if (label != nullptr && !text.isNull())
        label->setText(text);
    else if (auto *button = qobject_cast<QAbstractButton *>(&control))
        setButtonText(*button, text);
    else if (auto *list = qobject_cast<QListView *>(&control))
        list->scrollTo(list->currentIndex());
}

} // namespace

Form::Form(int templateId, QWidget *parent, const QPoint &origin)
    : QWidget(parent), origin_(origin) {
    const DialogTemplate *dialog = dialogTemplate(templateId);
    if (dialog == nullptr)
        return;
    QFont templateFont = font();
    templateFont.setPointSize(dialogFontPoints);
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
    const bool isWide = isWideTemplate(templateId);
    int anonymous = 0;
    for (const ControlTemplate &item : dialog->controls) {
        QWidget *control = form.control(item.id);
        if (control == nullptr)
            return false;
        if (auto *list = qobject_cast<ListView *>(control))
            list->setUnits(units);
        control->setGeometry(units.rect(isWide ? item.wide : item.tall, form.origin()));
        refreshContent(*control, item, isWide);
        anonymous += item.id == anonymousControl;
    }
    return anonymous < 2;
}

} // namespace tidebrook
