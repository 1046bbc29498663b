#pragma once

#include <QAbstractFileIconProvider>
#include <QFileSystemModel>
#include <QTimer>

namespace tidebrook {

class ProgressLine;
class ScreenStack;

struct FolderEntry {
    QString name;
    bool isFolder = false;

    bool operator==(const FolderEntry &) const = default;
};

/// Reads one folder at a time on a thread of its own, and watches it. Used on the user-interface
/// thread.
class FolderReader : public QObject {
    Q_OBJECT

public:
    /// The reader of a stack, which owns it. It outlives the dialogs, because its destruction
    /// blocks until the system stops watching folders, which takes seconds on a busy machine.
    static FolderReader &of(ScreenStack &stack);

    /// Only files that match the pattern are read, in any case.
    void setPattern(const QString &pattern) { model_.setNameFilters({pattern}); }
    /// Begins to read a folder, by its absolute path, instead of the one before. The stack's
    /// progress line shows it.
    void read(const QString &folder);
    /// Stops reading and watching.
    void rest();
    const QString &folder() const { return folder_; }
    bool isReading() const { return isReading_; }

    /// The entries found so far, without hidden ones: folders before files, each in the order of
    /// `sortByName`. None in a folder that cannot be read.
    QList<FolderEntry> entries() const;

Q_SIGNALS:
    /// Entries may have changed, or all were read, or the folder is gone. Emitted once in a turn of
    /// the event loop.
    void changed();

private:
    explicit FolderReader(ScreenStack &stack);
    void noteLoaded(const QString &folder);
    void setReading(bool isReading);

    // Real icons and types would cost a look into each file. The type is not empty, because the
    // model takes an entry without one for an entry that it has already.
    class NoIcons : public QAbstractFileIconProvider {
    public:
        QIcon icon(IconType) const override { return {}; }
        QIcon icon(const QFileInfo &) const override { return {}; }
        QString type(const QFileInfo &) const override { return QStringLiteral("entry"); }
    };

    ProgressLine &progress_;
    NoIcons icons_;
    QFileSystemModel model_;
    QTimer later_;
    QString folder_;
    bool isReading_ = false;
};

} // namespace tidebrook
