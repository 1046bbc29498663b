#include "kit/files/folder_reader.h"

#include "kit/progress_line.h"
#include "kit/screen_stack.h"

#include <QCollator>

#include <algorithm>
#include <utility>
#include <vector>

namespace tidebrook {

namespace {

QCollator localeOrder() {
    QCollator order;
    if (order.locale().language() == QLocale::C) // which sorts by codes
        order.setLocale(QLocale(QLocale::English));
    order.setNumericMode(true);
    order.setCaseSensitivity(Qt::CaseInsensitive);
    return order;
}

} // namespace

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
    struct Sortable {
        QCollatorSortKey key;
        FolderEntry entry;
    };
    const QModelIndex root = model_.index(folder_);
    const QCollator order = localeOrder();
    std::vector<Sortable> found;
    for (int i = 0; root.isValid() && i < model_.rowCount(root); ++i) {
        const QModelIndex index = model_.index(i, 0, root);
        const QString name = model_.fileName(index);
        if (!name.startsWith(u'.')) // the model has hidden folders that were once its root
            found.push_back({order.sortKey(name), {name, model_.isDir(index)}});
    }
    std::sort(found.begin(), found.end(), [](const Sortable &one, const Sortable &other) {
        if (one.entry.isFolder != other.entry.isFolder)
            return one.entry.isFolder;
        const int way = one.key.compare(other.key);
        return way != 0 ? way < 0 : one.entry.name < other.entry.name;
    });
    QList<FolderEntry> entries;
    entries.reserve(static_cast<qsizetype>(found.size()));
    for (Sortable &one : found)
        entries.append(std::move(one.entry));
    return entries;
}

} // namespace tidebrook
