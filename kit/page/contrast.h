#pragma once

#include <QColor>

class QPalette;

namespace tidebrook {

/// From 1, of equal colours, to 21, of black to white.
qreal contrastOf(const QColor &one, const QColor &other);

/// The colour itself where it is readable on `ground`; else the nearest on its way to black or
/// white, whichever `ground` is farther from. A text is readable at a contrast of 4.5:1, and the
/// contrast is the same when the two colours change places.
QColor readableOn(const QColor &ground, const QColor &colour);

/// Changes a palette so that the texts of controls that are not disabled are readable: the selected
/// ones by another ground, all others by another colour.
void makeReadable(QPalette &palette);

} // namespace tidebrook
