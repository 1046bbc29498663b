#pragma once

#include "kit/dialog_procedure.h"
#include "kit/files/file_dialog.h"
#include "kit/files/folder_reader.h"
#include "res/ids.h"

#include <QList>

namespace tidebrook {

class ListView;

/// The common part of the file dialogs: the user goes through the folders. It ends with 1 when a
/// `path` was chosen, and with 0 otherwise.
class FileProcedure : public DialogProcedure {
public:
    /// The request outlives it.
    FileProcedure(const FileRequest &request, MenuBarId menuBarId)
        : request_(request), menuBarId_(menuBarId) {}
    ~FileProcedure() override;

    void command(int id) override;
    void sized() override { showPlace(); }

    const QString &path() const { return path_; }

protected:
    void initialise() override;
    /// A file's row was tapped, or Enter was pressed on it.
    virtual void take(const QString &name) = 0;
    /// The right soft key, or Enter anywhere else.
    virtual void confirm() = 0;

    /// Does with the selected row what a tap on it does.
    void takeRow();
    /// Shows a folder, or the nearest existing one above it, with this entry selected.
    void goTo(const QString &folder, const QString &selected = {});
    /// Whether a path is within the limit; shows a message when it is not.
    bool isWithinLimit(const QString &path) const;
    /// Ends the dialog with a path.
    void choose(const QString &path);
    /// Shows why something cannot be done.
    void refuse(const QString &text) const;

    const FileRequest &request() const { return request_; }
    const QString &folder() const { return reader_->folder(); }

private:
    void prepareList();
    void goAbove();
    void refresh();
    void fill(QList<FolderEntry> entries);
    void showPlace();

    const FileRequest &request_;
    const MenuBarId menuBarId_;
    QString path_;
    ListView *list_ = nullptr;
    FolderReader *reader_ = nullptr;
    QList<FolderEntry> entries_; // as the list shows them
    QString wanted_;             // to be selected as soon as it is found
};

} // namespace tidebrook
