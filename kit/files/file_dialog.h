#pragma once

#include <QString>

namespace tidebrook {

class ScreenStack;

/// What a file dialog asks for.
struct FileRequest {
    QString title;
    QString filterName; ///< as the user sees it: "OPML (*.opml)"
    QString pattern;    ///< of the files that are shown: "*" and an ending, as "*.opml"
    QString name;       ///< the proposed name to save under; what no file name can have is changed
    qsizetype pathLimit = 260; ///< UTF-16 units; counted from the documents folder inside it
};

/// Shows the folders and the files that match the pattern, beginning in the user's documents.
/// Returns the absolute path of the file to open; null when the user cancels, or the window is
/// closed. A path longer than the limit is refused with a message. No file is opened, and the
/// chosen one may be gone by the time that it is used.
QString chooseFileToOpen(ScreenStack &stack, const FileRequest &request);
/// The same for a file to write. A name without the pattern's ending gets it, within the limit. An
/// existing file is only chosen when the user agrees to replace it. The folder exists, but may not
/// be writable.
QString chooseFileToSave(ScreenStack &stack, const FileRequest &request);

} // namespace tidebrook
