#pragma once

#include <QByteArray>

namespace tidebrook {

/// The seed file of a new device: UTF-16LE with a byte-order mark, a line for each channel (name,
/// tab, address, tab, category), ended by "\r\n".
QByteArray defaultChannelsFile();

} // namespace tidebrook
