#pragma once

#include "platform/base/device_root.h"

#include <QList>
#include <QString>

#include <optional>

namespace tidebrook {

/// An unread article. No text is empty.
struct Headline {
    QString category;
    QString channel;
    QString title;
    bool operator==(const Headline &) const = default;
};

struct Headlines {
    bool hasChannels = false;
    QList<Headline> unread; ///< the newest first
};

/// Reads the newest unread articles of all channels, `limit` at most, for a program that changes
/// nothing. Waits for another process 5 ms at most, and lets none wait. Nothing when the database
/// cannot be read now. Thread-safe.
std::optional<Headlines> readHeadlines(const DeviceRoot &device, int limit);

} // namespace tidebrook
