#pragma once

#include "res/dialog_templates.h"

#include <QRect>
#include <QSize>

namespace tidebrook {

/// 1 when a screen is taller than it is wide, 0 when it is square, -1 when it is wider than tall.
int ScreenShape(const QSize &screen);

/// The template of a dialog for a screen: the given even id, or the odd one after it. A square
/// screen counts as wide.
int templateForShape(int portraitId, const QSize &screen);

/// Converts dialog units to pixels. A template is 240 by 320 units or, for a screen that is not
/// taller than wide, 320 by 240. A unit goes by the font of the dialogs and is large enough for a
/// thumb. On a screen on which the template would not fit it is smaller, so that the template just
/// fits; a larger screen has room left. Rectangles that touch in units touch in pixels.
class DialogUnits {
public:
    explicit DialogUnits(const QSize &screen);

    /// A rectangle relative to `origin` of the screen, both in units.
    QRect rect(const UnitRect &units, const QPoint &origin = {}) const;
    int pixels(int units) const;

    QSize screen() const { return screen_; }
    /// What the template leaves of the screen, in pixels.
    QSize room() const;
    /// In units.
    QSize templateSize() const;

private:
    QSize screen_;
    qreal unit_; // in pixels
};

} // namespace tidebrook
