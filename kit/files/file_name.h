#pragma once

#include <QString>

namespace tidebrook {

/// Changes a text to a possible name of a visible file: characters that no name can have become
/// blanks, and leading dots and outer blanks go. With the ending, it is cut to the limit in UTF-16
/// units and to the bytes that a file system takes; an ending that it has stays. Empty when nothing
/// is left.
QString possibleFileName(const QString &text, const QString &ending, qsizetype limit);

/// Adds the ending, unless the path has it in any case.
QString withEnding(const QString &path, const QString &ending);

/// Whether a name has more bytes than a file system takes.
bool isNameTooLong(const QString &name);

QString pathIn(const QString &folder, const QString &name);

/// The folder itself, or the nearest existing one above it.
QString nearestFolder(const QString &folder);

/// The absolute path of a text that was typed in this folder: "~" is home.
QString pathMeant(const QString &text, const QString &folder);

/// The folder of the user's documents, which may not exist.
QString documentsFolder();

/// A path relative to the documents folder; the path itself when it lies outside.
QString pathFromDocuments(const QString &path);

} // namespace tidebrook
