#pragma once

#include <QPalette>
#include <QPixmap>
#include <QSize>

namespace tidebrook {

/// An icon of `res/icons.h` at a size in device-independent pixels, sharp on the application's
/// screen, in the palette's text colour where it has none of its own. It keeps its proportions
/// and is centred. Each is drawn once and kept; empty when there is no such icon.
QPixmap icon(const char *name, const QSize &size, const QPalette &palette);

} // namespace tidebrook
