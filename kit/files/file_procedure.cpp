#include "kit/files/file_procedure.h"

#include "kit/dialog.h"
#include "kit/files/file_name.h"
#include "kit/header_bar.h"
#include "kit/keys.h"
#include "kit/list_view.h"
#include "kit/message_box.h"
#include "kit/screen_stack.h"
#include "res/commands.h"
#include "res/strings.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace tidebrook {

using namespace Qt::StringLiterals;

namespace {

enum RowImage : int { ImageAbove, ImageFolder, ImageFile };

QString firstFolder() {
    const QString documents = documentsFolder();
    return nearestFolder(QFileInfo(documents).isDir() ? documents : QDir::homePath());
}

QString shownFolder(const QString &folder) {
    const QString documents = documentsFolder();
    QString name = QFileInfo(documents).fileName();
    if (folder == documents)
        return name;
    const QString inside = pathFromDocuments(folder);
    return inside == folder ? folder : pathIn(name, inside);
}

} // namespace

void FileProcedure::initialise() {
    list_ = dialog().control<ListView>(FilesListViewControl);
    dialog().makeMenuBar(menuBarId_);
    dialog().headerBar()->setCaption(request_.title);
    dialog().setBackKeys(CommandCancel);
    dialog().setEnterKeys(CommandOk);
    dialog().setKey(Qt::ALT | Qt::Key_Up, CommandFolderAbove);
    for (const int id : {FolderLabel, FilterLabel})
        dialog().control<QLabel>(id)->setWordWrap(false);
    dialog().control<QLabel>(FilterLabel)->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
    prepareList();
    reader_ = &FolderReader::of(dialog().stack());
    reader_->setPattern(request_.pattern);
    connect(reader_, &FolderReader::changed, this, &FileProcedure::refresh);
    goTo(firstFolder());
}

FileProcedure::~FileProcedure() {
    if (reader_ != nullptr)
        reader_->rest();
}

void FileProcedure::prepareList() {
    list_->setImages({"folder-up", "folder", "file"});
    list_->setAccessibleName(resourceString(filesString));
    connect(list_, &ListView::tapped, this, [this](int row) {
        if (row >= 0)
            dialog().choose(CommandTakeFile);
    });
    connect(list_, &ListView::keyPressed, this, [this](int key, bool &isTaken) {
        isTaken = isEnter(key) || key == Qt::Key_Backspace;
        if (isTaken)
            dialog().choose(isEnter(key) ? CommandTakeFile : CommandFolderAbove);
    });
}

void FileProcedure::command(int id) {
    if (id == CommandOk)
        confirm();
    else if (id == CommandCancel)
        close();
    else if (id == CommandTakeFile)
        takeRow();
    else if (id == CommandFolderAbove)
        goAbove();
}

void FileProcedure::takeRow() {
    const int row = SelectedRow(list_);
    if (row < 0)
        return;
    const ListRow content = list_->row(row);
    if (content.image == ImageAbove)
        goAbove();
    else if (content.image == ImageFolder)
        goTo(pathIn(folder(), content.text));
    else
        take(content.text);
}

void FileProcedure::goAbove() {
    const QFileInfo here(folder());
    if (!here.isRoot())
        goTo(here.path(), here.fileName());
}

void FileProcedure::goTo(const QString &folder, const QString &selected) {
    wanted_ = selected;
    list_->setRows({});
    reader_->read(nearestFolder(folder));
    showPlace();
    fill(reader_->entries());
}

void FileProcedure::refresh() {
    const bool isGone = !reader_->isReading() && !QFileInfo(folder()).isDir();
    if (isGone)
        goTo(folder());
    else if (QList<FolderEntry> entries = reader_->entries(); entries != entries_)
        fill(std::move(entries));
}

// The selection and the scroll position stay, also when rows above them change.
void FileProcedure::fill(QList<FolderEntry> entries) {
    const int before = SelectedRow(list_);
    const QString selected = before > 0 || wanted_.isEmpty() ? list_->rowText(before) : wanted_;
    const int place = list_->verticalScrollBar()->value();
    entries_ = std::move(entries);
    QList<ListRow> rows;
    rows.reserve(entries_.size() + 1);
    if (!QFileInfo(folder()).isRoot())
        rows.append({u".."_s, resourceString(folderAboveString), ImageAbove});
    for (const FolderEntry &entry : std::as_const(entries_))
        rows.append({entry.name, {}, entry.isFolder ? ImageFolder : ImageFile});
    list_->setRows(std::move(rows));
    const int found = list_->findRow(selected);
    list_->selectRow(std::max(found, 0));
    if (found >= 0 && selected != wanted_) {
        list_->doItemsLayout();
        list_->verticalScrollBar()->setValue(place);
    }
    if (found >= 0)
        wanted_.clear();
}

void FileProcedure::showPlace() {
    const auto show = [this](int id, const QString &text) {
        auto *label = dialog().control<QLabel>(id);
        label->setText(
            label->fontMetrics().elidedText(text, Qt::ElideMiddle, label->contentsRect().width()));
        label->setAccessibleName(text);
    };
    show(FolderLabel, shownFolder(folder()));
    show(FilterLabel, request_.filterName);
}

bool FileProcedure::isWithinLimit(const QString &path) const {
    const bool isWithin = pathFromDocuments(path).size() <= request_.pathLimit;
    if (!isWithin)
        refuse(resourceString(fileProblemString));
    return isWithin;
}

void FileProcedure::choose(const QString &path) {
    path_ = path;
    dialog().end(1);
}

void FileProcedure::refuse(const QString &text) const {
    MessageBox::ask(dialog().stack(), MessageBox::Kind::Error, resourceString(errorString), text);
}

} // namespace tidebrook
