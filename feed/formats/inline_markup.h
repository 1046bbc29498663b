#pragma once

#include "platform/xml/xml_document.h"

#include <QString>
#include <QUrl>

namespace tidebrook {

/// The elements and texts within an element as HTML, with whole addresses in the place of those
/// that are relative to `base`. It ends early where the description of an article would.
QString inlineMarkup(XmlNode element, const QUrl &base);

} // namespace tidebrook
