#pragma once

#include "update/refresh_job.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace tidebrook {

// The files by which channels are handed to the downloader are UTF-16LE text without a byte-order
// mark, a line a channel: name, tab, address, tab, category, line feed.

QByteArray encodeChannelFile(const QString &text);
/// Nothing when there is no such file, or it is larger than `byteLimit`. Tolerates a byte-order
/// mark and drops half of a character at the end. Never waits: what is no plain file is not read.
std::optional<QString> readChannelFile(const QString &path, qint64 byteLimit);

QString channelLine(const RefreshJob &job);

/// A line without its line feed, its texts cut to their capacities; nothing when it is not three
/// texts, or the name or the address is empty.
std::optional<RefreshJob> parseChannelLine(QStringView line);

} // namespace tidebrook
