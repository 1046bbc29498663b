#pragma once

#include <QPalette>
#include <QPixmap>
#include <QSize>

namespace tidebrook {

/// An icon of `res/icons.h`, centred in a size in device-independent pixels, in its own colours and
/// the palette's text colour. It is cached. Empty when there is no such icon.
QPixmap icon(const char *name, const QSize &size, const QPalette &palette);

} // namespace tidebrook
