#pragma once

#include "platform/http/http.h"
#include "platform/sql/registry.h"

#include <QString>

#include <optional>

namespace tidebrook {

// What an address leads to, told by the first kilobyte of its document, which is all that is
// waited for. A request that fails leaves its code in the registry's "ERRORNO"; a document that
// does not tell leaves none. Both wait for the network, and end at once when `limits.stop` is
// raised. Thread-safe.

/// "<opml" or "<rss", whichever tag comes first, in any case; nothing when neither comes.
std::optional<QString> probeType(Registry &registry, const QString &url,
                                 const HttpLimits &limits = {});

/// The title that the document gives itself, of at most 49 bytes of UTF-8, as it stands there.
/// Nothing when it has none, or an empty one.
std::optional<QString> probeTitle(Registry &registry, const QString &url,
                                  const HttpLimits &limits = {});

} // namespace tidebrook
