#pragma once

#include <QByteArray>

namespace tidebrook {

/// The channels that a new device comes with, as its seed file holds them: UTF-16LE with a
/// byte-order mark, a line a channel (name, tab, address, tab, category), lines ended by "\r\n".
QByteArray defaultChannelsFile();

} // namespace tidebrook
