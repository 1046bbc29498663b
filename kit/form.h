#pragma once

#include "kit/screen_shape.h"
#include "res/dialog_templates.h"

#include <QHash>
#include <QWidget>

namespace tidebrook {

/// A widget that owns the controls of a dialog template: a whole dialog, or a page of a property
/// sheet.
class Form : public QWidget {
public:
    /// Makes the controls; none when there is no such template. `origin` is where in the screen the
    /// template's rectangles begin, in dialog units.
    Form(int templateId, QWidget *parent, const QPoint &origin = {});

    /// The first control with this id; nullptr when there is none.
    QWidget *control(int id) const { return controls_.value(id); }
    /// Also nullptr when it is of another type.
    template <class Widget> Widget *control(int id) const {
        return qobject_cast<Widget *>(control(id));
    }

    QPoint origin() const { return origin_; }

private:
    const QPoint origin_;
    QHash<int, QWidget *> controls_;
};

/// Moves the controls of a form to where a template of the same controls, usually that of the
/// other orientation, has them, and sets the texts and icons that the template has. Selected rows
/// and choices stay selected. On a larger screen than the template's, lists and pages take the
/// room that is left, and all else keeps a readable width.
///
/// A control that the form does not have stops the walk: those behind it stay where they are.
/// True when all went well, and when not more than one control of the template is anonymous.
bool RelayoutFromTemplate(Form &form, int templateId, const DialogUnits &units);

} // namespace tidebrook
