#pragma once

#include "res/dialog_templates.h"

#include <QWidget>

namespace tidebrook {

/// Makes the widget of a control, without its text and its place.
QWidget *makeControl(const ControlTemplate &item, QWidget *parent);

} // namespace tidebrook
