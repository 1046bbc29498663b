#pragma once

#include "feed/formats/scoped_element.h"

#include <QByteArray>

#include <optional>

namespace tidebrook {

/// A feed of RSS 1.0 or 0.90 as the RSS 2.0 document of the same content, as `RssWriter::end`
/// returns it. Nothing for RDF of any other kind. `rdf` is the root.
std::optional<QByteArray> rssOfRdf(const ScopedElement &rdf);

} // namespace tidebrook
