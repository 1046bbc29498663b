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

/// Converts dialog units to pixels for a screen, which is 240 by 320 units or, when it is not
/// taller than wide, 320 by 240. Rectangles that touch in units touch in pixels.
class DialogUnits {
public:
    explicit DialogUnits(const QSize &screen);

    /// A rectangle relative to `origin` of the screen, both in units.
    QRect rect(const UnitRect &units, const QPoint &origin = {}) const;
    int width(int units) const { return scale(units, screen_.width(), across_); }
    int height(int units) const { return scale(units, screen_.height(), down_); }

    QSize screen() const { return screen_; }

private:
    static int scale(int units, int pixels, int whole) { return units * pixels / whole; }

    QSize screen_;
    int across_;
    int down_;
};

} // namespace tidebrook
