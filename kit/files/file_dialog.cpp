#include "kit/files/file_dialog.h"

#include "kit/dialog.h"
#include "kit/files/file_name.h"
#include "kit/files/file_procedure.h"
#include "kit/message_box.h"
#include "kit/screen_stack.h"
#include "platform/base/text.h"
#include "res/ids.h"
#include "res/strings.h"

#include <QFileInfo>
#include <QLineEdit>

namespace tidebrook {

namespace {

constexpr int nameInBoxUnits = 120; // a box does not break words

class OpenProcedure : public FileProcedure {
public:
    explicit OpenProcedure(const FileRequest &request) : FileProcedure(request, OpenFileMenuBar) {}

protected:
    void take(const QString &name) override {
        const QString path = pathIn(folder(), name);
        if (isWithinLimit(path))
            choose(path);
    }
    void confirm() override { takeRow(); }
};

class SaveProcedure : public FileProcedure {
public:
    explicit SaveProcedure(const FileRequest &request)
        : FileProcedure(request, SaveFileMenuBar), ending_(request.pattern.sliced(1)) {}

protected:
    void initialise() override;
    void take(const QString &name) override;
    void confirm() override;

private:
    void save(const QString &typed);
    bool mayReplace(const QString &path) const;
    /// Why the file cannot be written; null when it can.
    QString faultOf(const QString &typed, const QString &path) const;
    void propose(const QString &name);
    /// The requested name, within the limit.
    QString proposal() const;
    /// A text of the string table with a name or path, elided to fit into a box.
    QString textWith(int stringId, const QString &name) const;

    const QString ending_;
    QLineEdit *name_ = nullptr;
};

void SaveProcedure::initialise() {
    FileProcedure::initialise();
    name_ = dialog().control<QLineEdit>(FileNameEdit);
    name_->setAccessibleName(resourceString(fileNameString));
    propose(proposal());
}

QString SaveProcedure::proposal() const {
    return possibleFileName(request().name, ending_, request().pathLimit);
}

void SaveProcedure::propose(const QString &name) {
    name_->setText(name);
    name_->selectAll();
}

void SaveProcedure::take(const QString &name) {
    propose(name);
    name_->setFocus();
}

void SaveProcedure::confirm() {
    const QString text = withoutControls(name_->text()).trimmed();
    const QString typed = pathMeant(text, folder());
    if (text.isEmpty()) {
        refuse(resourceString(noFileNameString));
    } else if (QFileInfo(typed).isDir()) {
        goTo(typed);
        propose(proposal());
    } else if (text.endsWith(u'/')) {
        refuse(textWith(noFolderString, typed));
    } else {
        save(typed);
    }
}

void SaveProcedure::save(const QString &typed) {
    const QString path = withEnding(typed, ending_);
    const QString fault = faultOf(typed, path);
    if (!fault.isEmpty())
        refuse(fault);
    else if (isWithinLimit(path) && (!QFileInfo::exists(path) || mayReplace(path)))
        choose(path);
}

bool SaveProcedure::mayReplace(const QString &path) const {
    return MessageBox::ask(dialog().stack(), MessageBox::Kind::Question, request().title,
                           textWith(replaceFileString, QFileInfo(path).fileName()));
}

QString SaveProcedure::faultOf(const QString &typed, const QString &path) const {
    const QFileInfo target(path);
    if (!QFileInfo(target.path()).isDir())
        return textWith(noFolderString, target.path());
    if (isNameTooLong(target.fileName()))
        return resourceString(longFileNameString);
    for (const QFileInfo &place : {QFileInfo(typed), target}) {
        if (place.exists() && !place.isFile())
            return textWith(noFileString, place.fileName());
    }
    return {};
}

QString SaveProcedure::textWith(int stringId, const QString &name) const {
    const ScreenStack &stack = dialog().stack();
    return resourceString(stringId).arg(stack.fontMetrics().elidedText(
        name, Qt::ElideMiddle, stack.units().pixels(nameInBoxUnits)));
}

QString run(int templateId, ScreenStack &stack, FileProcedure &procedure) {
    return RunDialog(templateId, stack, procedure) == 1 ? procedure.path() : QString();
}

} // namespace

QString chooseFileToOpen(ScreenStack &stack, const FileRequest &request) {
    OpenProcedure procedure(request);
    return run(OpenFileTemplate, stack, procedure);
}

QString chooseFileToSave(ScreenStack &stack, const FileRequest &request) {
    SaveProcedure procedure(request);
    return run(SaveFileTemplate, stack, procedure);
}

} // namespace tidebrook
