#pragma once

#include "kit/screen_shape.h"
#include "res/dialog_templates.h"

#include <QHash>
#include <QWidget>

namespace tidebrook {

/// A widget whose controls are made from a dialog template: a whole dialog, or a page of a
/// property sheet. It owns them.
class Form : public QWidget {
public:
    /// Makes the controls of a template; none when there is no such template.
    Form(int templateId, QWidget *parent);

    /// The first control with this id; nullptr when there is none.
    QWidget *control(int id) const { return controls_.value(id); }

    /// The same as a widget of this type; nullptr when it is of another.
    template <class Widget> Widget *control(int id) const {
        return qobject_cast<Widget *>(control(id));
    }

    /// Where in the screen the template's rectangles are counted from, in dialog units.
    virtual QPoint unitOrigin() const { return {}; }

private:
    QHash<int, QWidget *> controls_;
};

/// Moves the controls of a form to where a template of the same controls, usually that of the
/// other orientation, has them, and gives labels, buttons and images the text or icon that stands
/// there. Selected rows and choices stay selected.
///
/// A control that the form does not have stops the walk: those behind it stay where they are.
/// True when all went well, and when not more than one control of the template is anonymous.
bool RelayoutFromTemplate(Form &form, int templateId, const DialogUnits &units);

} // namespace tidebrook
