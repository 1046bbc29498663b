#pragma once

#include "feed/formats/scoped_element.h"

#include <QByteArray>

namespace tidebrook {

/// An Atom feed (1.0 or 0.3) as the RSS document of the same content, as `RssWriter::end` returns
/// it. `feed` is its root.
QByteArray rssOfAtom(const ScopedElement &feed);

} // namespace tidebrook
