#pragma once

#include "platform/http/http.h"
#include "platform/sql/registry.h"

#include <QString>

#include <optional>

namespace tidebrook {

// What an address leads to, by the first kilobyte of its document; no more is downloaded. A request
// that fails leaves its code in the registry's "ERRORNO". Both wait for the network, and end at
// once when `limits.stop` is raised. Thread-safe.

/// "<opml" or "<rss", the tag that comes first, in any case; nothing when neither comes.
std::optional<QString> probeType(Registry &registry, const QString &url,
                                 const HttpLimits &limits = {});

/// The document's own title, of at most 49 bytes of UTF-8, with its entities as they are. Nothing
/// when it has none, or an empty one.
std::optional<QString> probeTitle(Registry &registry, const QString &url,
                                  const HttpLimits &limits = {});

} // namespace tidebrook
