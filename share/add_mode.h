#pragma once

#include <QtGlobal>

namespace tidebrook {

/// How channels are added.
enum class AddMode : quint8 {
    ListFromUrl = 1,  ///< an OPML list that is downloaded
    ListFromFile = 2, ///< an OPML list that is on the device
    FeedFromUrl = 3,  ///< a single feed
};

} // namespace tidebrook
