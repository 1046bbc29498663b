#pragma once

#include <QAbstractFileIconProvider>
#include <QFileSystemModel>
#include <QTimer>

namespace tidebrook {

class ProgressLine;

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
    /// Of files it reads those that the pattern has, in whatever case. The progress line, which
    /// outlives it, is at work while it reads.
    FolderReader(const QString &pattern, ProgressLine &progress);
    /// Ends the thread, as soon as that is done with the entry that it is at.
    ~FolderReader() override;

    /// Begins to read a folder, by its absolute path, in place of the one before.
    void read(const QString &folder);
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
