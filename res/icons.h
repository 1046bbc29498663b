#pragma once

#include <QByteArray>

namespace tidebrook {

/// The SVG of an icon, by the name of its file in `res/icons` without the ending; empty when there
/// is none. "currentColor" in it stands for the colour of the text.
QByteArray iconSvg(const char *name);

/// The help page, as HTML. Its explanation begins at the anchor "FeedlarkHelp".
QByteArray helpPage();

} // namespace tidebrook
