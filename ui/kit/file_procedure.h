#pragma once

#include "ui/kit/dialog_procedure.h"
#include "ui/kit/file_dialog.h"
#include "ui/kit/folder_reader.h"

#include <QList>

#include <memory>

namespace tidebrook {

class ListView;

/// What the dialogs for files have in common: the user goes through the folders. It ends with 1
/// when `choice` says what came of it, and with 0 when the user chose nothing.
class FileProcedure : public DialogProcedure {
public:
    /// The request outlives it.
    FileProcedure(const FileRequest &request, int menuBarId)
        : request_(request), menuBarId_(menuBarId) {}

    bool initialise(Dialog &dialog) override;
    void command(int id) override;
    void sized() override { showPlace(); }
    void close() override;
    void helpRequested() override;
    std::optional<int> backCommand() const override;
    std::optional<int> commandOfKey(const QKeyEvent &event) const override;

    const FileChoice &choice() const { return choice_; }

protected:
    /// A file's row was tapped, or Enter was pressed on it.
    virtual void take(const QString &name) = 0;
    /// The right soft key, or Enter anywhere else.
    virtual void confirm() = 0;

    /// Does with the selected row what a tap on it does.
    void takeRow();
    /// Shows a folder or, if it is not there, the nearest above it, with this entry selected.
    void goTo(const QString &folder, const QString &selected = {});
    bool isTooLong(const QString &path) const;
    /// Ends the dialog with a path, or without if `counted` is too long for one.
    void choose(const QString &path, const QString &counted);

    const FileRequest &request() const { return request_; }
    Dialog &dialog() const { return *dialog_; }
    const QString &folder() const { return reader_->folder(); }

private:
    void prepareList();
    void goAbove();
    void refresh();
    void fill(QList<FolderEntry> entries);
    void showPlace();

    const FileRequest &request_;
    const int menuBarId_;
    FileChoice choice_;
    Dialog *dialog_ = nullptr;
    ListView *list_ = nullptr;
    std::unique_ptr<FolderReader> reader_;
    QList<FolderEntry> entries_; // as the list shows them
    QString wanted_;             // to be selected as soon as it is found
};

} // namespace tidebrook
