#pragma once

#include <QString>

#include <functional>

namespace tidebrook {

class ScreenStack;

/// What a file dialog asks for.
struct FileRequest {
    QString title;
    QString filterName; ///< as the user sees it: "OPML (*.opml)"
    QString pattern;    ///< "*" and the ending of the files that are shown: "*.opml"
    QString name; ///< what to save under is proposed to be this; changed to what can be a name
    qsizetype pathLimit = 260;  ///< UTF-16 units; counted from the documents folder inside that
    std::function<void()> help; ///< when the user asks for help; may be empty
};

/// Shows the folders and the files that the pattern has, beginning in the user's documents, until
/// one is chosen: to be opened ...
///
/// Call it on the user-interface thread; it returns the absolute path when the dialog has ended. It
/// is null when the user cancels it, or the window is closed meanwhile. A path that is longer than
/// the limit is refused, and the user told. No file is touched, and one that was chosen may be gone
/// by the time that it is used.
QString chooseFileToOpen(ScreenStack &stack, const FileRequest &request);
/// ... or to be written, where a name that is there already is only chosen when the user agrees to
/// replacing it. A name without the pattern's ending gets it, within the limit. The folder was
/// there; whether it can be written to is not known.
QString chooseFileToSave(ScreenStack &stack, const FileRequest &request);

} // namespace tidebrook
