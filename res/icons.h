#pragma once

#include <QByteArray>

namespace tidebrook {

/// The drawing of an icon, as SVG, by the name of its file in `res/icons` without the ending;
/// empty when there is none. What the drawing paints in "currentColor" takes the colour of the
/// text around it.
QByteArray iconSvg(const char *name);

/// The help page, as HTML. Its anchor "FeedlarkHelp" is where the explanation begins.
QByteArray helpPage();

} // namespace tidebrook
