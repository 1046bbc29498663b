#pragma once

#include "platform/base/device_root.h"
#include "store/headlines.h"

#include <chrono>
#include <optional>

namespace tidebrook {

/// What the Today item shows of a device.
struct TodayState {
    enum class News {
        NoDevice,   ///< the reader makes one when it starts
        Unreadable, ///< the database or the registry
        NoChannel,
        NothingUnread,
        Unread,
    };

    News news = News::Unreadable;
    bool isEnabled = true;
    std::chrono::milliseconds step{0}; ///< from one headline to the next
    bool notifies = false;             ///< of what a round of the downloader has brought
    quint32 total = 0;                 ///< of unread articles, as the store published it
    QList<Headline> headlines;         ///< the newest first

    bool operator==(const TodayState &) const = default;
};

/// The key of the Today item in the registry.
QString ownTodayKey();

/// Reads a device and changes nothing. Waits for other processes some milliseconds at most. Of a
/// device that is there but cannot be read now, `isEnabled` and what else could not be read are as
/// they were in `last`. Thread-safe.
TodayState readToday(const DeviceRoot &device, const TodayState &last);

/// A feed's text on one line, without what could change how the text around it is read.
QString shownLine(const QString &text);
/// Channel and title on one line.
QString shownHeadline(const Headline &headline);

} // namespace tidebrook
