#pragma once

#include <QString>

namespace tidebrook {

/// Makes a text one that can be the name of a file which everybody sees: what no name can have in
/// it becomes a blank, and dots and blanks at its beginning and blanks at its end go. It is cut so
/// that it has, with this ending, no more UTF-16 units than the limit, nor more bytes than a file
/// system takes; an ending that it has already stays. Empty when nothing is left.
QString possibleFileName(const QString &text, const QString &ending, qsizetype limit = 255);

/// The path or name, with this ending unless it has that in whatever case.
QString withEnding(const QString &path, const QString &ending);

/// Whether no file can have this name, because of its bytes.
bool isNameTooLong(const QString &name);

/// The path of what has this name in a folder.
QString pathIn(const QString &folder, const QString &name);

/// The folder itself, or the nearest above it that is there.
QString nearestFolder(const QString &folder);

/// The absolute path that the user means by a text, in this folder: "~" is home.
QString pathMeant(const QString &text, const QString &folder);

/// Where the user's documents are, whether that is there or not.
QString documentsFolder();

/// The part of a path from the documents folder on; all of it when it lies outside.
QString pathFromDocuments(const QString &path);

} // namespace tidebrook
