#pragma once

#include "platform/html/html_tokens.h"

#include <QString>

namespace tidebrook {

/// Whether a picture is too small to be seen: those of one pixel count readers, or keep other
/// elements apart.
bool isPixel(const HtmlTag &picture);

/// Whether the picture itself stands in its tag, so that it has no address.
bool isInlineData(const HtmlTag &picture);

/// The text in place of a picture, with its entities: the alternative text or the name of its file.
/// Empty when it has neither.
QString pictureText(const HtmlTag &picture);

} // namespace tidebrook
