#pragma once

#include <QAbstractFileIconProvider>
#include <QFileSystemModel>
#include <QTimer>

namespace tidebrook {

class ProgressLine;
class ScreenStack;

/// What stands in a folder.
struct FolderEntry {
    QString name;
    bool isFolder = false;

    bool operator==(const FolderEntry &) const = default;
};

/// Reads folders, one at a time, on a thread of its own, and tells what becomes of the one that it
/// has read. Use it on the user-interface thread.
class FolderReader : public QObject {
    Q_OBJECT

public:
    /// The one of a stack, which owns it. It stays when its dialog ends, because its own end blocks
    /// for what the system takes to stop watching folders (seconds on a busy machine), and for what
    /// its thread takes for the entry that it is at.
    static FolderReader &of(ScreenStack &stack);

    /// Of files it reads those that the pattern has, in whatever case.
    void setPattern(const QString &pattern) { model_.setNameFilters({pattern}); }
    /// Begins to read a folder, by its absolute path, in place of the one before. The stack's
    /// progress line is at work while it reads.
    void read(const QString &folder);
    /// Reads and watches nothing any more.
    void rest();
    const QString &folder() const { return folder_; }
    bool isReading() const { return isReading_; }

    /// What was found so far: folders before files, each in the order in which people sort, and
    /// nothing hidden. None in a folder that cannot be read.
    QList<FolderEntry> entries() const;

Q_SIGNALS:
    /// The entries may be others, or all was read; once in a turn of the event loop. A folder that
    /// is gone is told of too.
    void changed();

private:
    explicit FolderReader(ScreenStack &stack);
    void noteLoaded(const QString &folder);
    void setReading(bool isReading);

    // Nothing here shows icons and kinds of files, which cost a look into each. Still, the model
    // takes an entry without any kind for one that it shows already.
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
