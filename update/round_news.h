#pragma once

#include "platform/base/device_root.h"
#include "store/settings_store.h"

#include <QStringView>
#include <QtGlobal>

#include <optional>

namespace tidebrook {

/// Reports to a Today item that a round has brought new articles: auto reset, and kept only while
/// a Today item holds it open.
inline constexpr QStringView newArticlesEvent = u"NEWARTICLES";

/// What a round has brought.
struct RoundNews {
    quint32 articles = 0; ///< new ones
    quint32 channels = 0; ///< that have got some
};

/// Stores "NewArticles" and "NewChannels" under the Today item's key, both or neither, and then
/// sets the event. A round that brought no article changes nothing: what an earlier one brought
/// stays. False when the values could not be stored or the event not be set. They are not flushed.
bool publishRoundNews(const DeviceRoot &device, SettingsStore &settings, QStringView todayItemKey,
                      const RoundNews &news);

/// What the last round with new articles has brought; nothing when there was none.
std::optional<RoundNews> readRoundNews(SettingsStore &settings, QStringView todayItemKey);

} // namespace tidebrook
