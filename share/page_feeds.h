#pragma once

#include "platform/http/http.h"

#include <QList>
#include <QString>

#include <optional>

namespace tidebrook {

/// A feed that a web page names.
struct PageFeed {
    QString title;      // one line; may be empty
    QString address;    // whole, of http or https
    bool isRss = false; // else of a format that is read on demand
};

/// The feeds that the web page at this address names in its head, each address once, in the page's
/// order, 100 at most. Nothing where no web page is. Waits for the network; thread-safe.
std::optional<QList<PageFeed>> feedsOfPage(const QString &url, const HttpLimits &limits = {});

} // namespace tidebrook
