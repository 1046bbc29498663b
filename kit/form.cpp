#include "kit/form.h"

#include "kit/controls.h"
#include "kit/icon.h"
#include "kit/list_view.h"

#include <QAbstractButton>
#include <QLabel>

#include <algorithm>

namespace tidebrook {

namespace {

// Shows an ampersand instead of making a mnemonic of it.
void setButtonText(QAbstractButton &button, QString text) {
    button.setText(text.replace(QLatin1Char('&'), QLatin1String("&&")));
}

// Says what a control is for that has no text of its own. Qt names a drop-down list by its choice
// alone, so a label, or else a description, tells the rest.
void nameBy(QWidget *before, const QString &text, QWidget &control) {
    control.setAccessibleName(text);
    if (auto *label = qobject_cast<QLabel *>(before))
        label->setBuddy(&control);
    else
        control.setAccessibleDescription(text);
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
}

bool takesRoom(ControlKind kind) {
    return kind == ControlKind::ListView || kind == ControlKind::Page || kind == ControlKind::Pages;
}

/// Where the controls of a form are on a screen that is larger than the template: what can use the
/// room has it, and the others are set in a column of a readable width.
class Arrangement {
public:
    Arrangement(const DialogTemplate &dialog, bool isWide, const QPoint &origin,
                const DialogUnits &units)
        : isWide_(isWide), origin_(origin), units_(units) {
        const int whole = units.pixels(units.templateSize().width());
        const int column = std::min(units.screen().width(), whole * mostColumn / leastColumn);
        stretch_ = qreal(column) / whole;
        // Above a list the column begins where the rows do.
        if (std::ranges::none_of(dialog.controls, takesRoom, &ControlTemplate::kind))
            start_ = (units.screen().width() - column) / 2;
    }

    QRect place(const ControlTemplate &item) const {
        const QRect given = units_.rect(isWide_ ? item.wide : item.tall, origin_);
        const QSize room = units_.room();
        if (takesRoom(item.kind))
            return given.adjusted(0, 0, room.width(), room.height());
        if (item.kind == ControlKind::Tabs)
            return given.adjusted(0, room.height(), room.width(), room.height());
        const int left = qRound(given.left() * stretch_);
        const int end = qRound((given.left() + given.width()) * stretch_);
        return {start_ + left, given.top(), end - left, given.height()};
    }

private:
    // A column is at most so much wider than in the template.
    static constexpr int mostColumn = 4;
    static constexpr int leastColumn = 3;

    const bool isWide_;
    const QPoint origin_;
    const DialogUnits units_;
    qreal stretch_ = 1;
    int start_ = 0;
};

} // namespace

Form::Form(int templateId, QWidget *parent, const QPoint &origin)
    : QWidget(parent), origin_(origin) {
    const DialogTemplate *dialog = dialogTemplate(templateId);
    if (dialog == nullptr)
        return;
    QFont templateFont = font();
    templateFont.setPointSize(dialogFontPoints);
    setFont(templateFont);
    QWidget *before = nullptr; // the last control with a text
    QString text;
    for (const ControlTemplate &item : dialog->controls) {
        QWidget *control = makeControl(item, this);
        if (item.text == nullptr && item.kind != ControlKind::Label) {
            nameBy(before, text, *control);
        } else if (item.text != nullptr) {
            before = control;
            text = QString::fromUtf16(item.text).remove(QLatin1Char(':'));
        }
        if (!controls_.contains(item.id))
            controls_.insert(item.id, control);
    }
}

bool RelayoutFromTemplate(Form &form, int templateId, const DialogUnits &units) {
    const DialogTemplate *dialog = dialogTemplate(templateId);
    if (dialog == nullptr)
        return false;
    const bool isWide = isWideTemplate(templateId);
    const Arrangement arrangement(*dialog, isWide, form.origin(), units);
    int anonymous = 0;
    for (const ControlTemplate &item : dialog->controls) {
        QWidget *control = form.control(item.id);
        if (control == nullptr)
            return false;
        if (auto *list = qobject_cast<ListView *>(control))
            list->setUnits(units);
        control->setGeometry(arrangement.place(item));
        refreshContent(*control, item, isWide);
        anonymous += item.id == anonymousControl;
    }
    return anonymous < 2;
}

} // namespace tidebrook
