#include "kit/files/folder_reader.h"

#include "kit/progress_line.h"
#include "kit/screen_stack.h"
#include "platform/base/name_order.h"

#include <algorithm>
#include <utility>

namespace tidebrook {

FolderReader &FolderReader::of(ScreenStack &stack) {
    auto *reader = stack.findChild<FolderReader *>({}, Qt::FindDirectChildrenOnly);
    return reader != nullptr ? *reader : *new FolderReader(stack);
}

FolderReader::FolderReader(ScreenStack &stack) : QObject(&stack), progress_(stack.progressLine()) {
    model_.setIconProvider(&icons_);
    model_.setOption(QFileSystemModel::DontUseCustomDirectoryIcons);
    model_.setFilter(QDir::AllDirs | QDir::Files | QDir::NoDotAndDotDot);
    model_.setNameFilterDisables(false);
    later_.setSingleShot(true);
    connect(&later_, &QTimer::timeout, this, &FolderReader::changed);
    const auto changeLater = [this] { later_.start(0); };
    connect(&model_, &QFileSystemModel::rowsInserted, this, changeLater);
    connect(&model_, &QFileSystemModel::rowsRemoved, this, changeLater);
    connect(&model_, &QFileSystemModel::dataChanged, this, changeLater);
    connect(&model_, &QFileSystemModel::layoutChanged, this, changeLater);
    connect(&model_, &QFileSystemModel::directoryLoaded, this, &FolderReader::noteLoaded);
}

void FolderReader::read(const QString &folder) {
    if (folder == folder_)
        return; // the model would not report that it was read
    folder_ = folder;
    setReading(true);
    model_.setRootPath(folder);
    if (model_.rootPath() != folder) // it is gone
        noteLoaded(folder);
}

void FolderReader::rest() {
    folder_.clear();
    model_.setRootPath({});
    setReading(false);
}

void FolderReader::noteLoaded(const QString &folder) {
    if (folder != folder_)
        return;
    setReading(false);
    later_.start(0);
}

void FolderReader::setReading(bool isReading) {
    if (isReading == std::exchange(isReading_, isReading))
        return;
    if (isReading)
        progress_.begin();
    else
        progress_.finish();
}

QList<FolderEntry> FolderReader::entries() const {
    const QModelIndex root = model_.index(folder_);
    QList<FolderEntry> entries;
    for (int i = 0; root.isValid() && i < model_.rowCount(root); ++i) {
        const QModelIndex index = model_.index(i, 0, root);
        const QString name = model_.fileName(index);
        if (!name.startsWith(u'.')) // the model has hidden folders that were once its root
            entries.append({name, model_.isDir(index)});
    }
    sortByName(entries);
    std::stable_partition(entries.begin(), entries.end(),
                          [](const FolderEntry &entry) { return entry.isFolder; });
    return entries;
}

} // namespace tidebrook

#include "moc_folder_reader.cpp"
