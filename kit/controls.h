#pragma once

#include "res/dialog_templates.h"

#include <QString>
#include <QWidget>

namespace tidebrook {

/// Makes the widget of a control, a child of `parent`, with its text and without a place.
QWidget *makeControl(const ControlTemplate &item, QWidget *parent);

/// Gives a label or a button its text as it stands: an ampersand is shown, not taken for a
/// mnemonic. Other controls stay as they are.
void setControlText(QWidget &control, const QString &text);

} // namespace tidebrook
