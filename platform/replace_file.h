#pragma once

#include <QByteArray>
#include <QString>

namespace tidebrook {

/// Puts a file in place whole, instead of the one that is there: whoever reads it meanwhile, or
/// after a crash, finds the one or the other. False when that failed; the file that was there is
/// then as it was.
bool replaceFile(const QString &path, const QByteArray &content);

/// Whether nothing is there, or a plain file: a device or a pipe that is replaced is gone.
bool isReplaceable(const QString &path);

} // namespace tidebrook
