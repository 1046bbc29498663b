#include "share/dialogs/channel_properties.h"

#include "app/messages.h"
#include "kit/dialog.h"
#include "platform/base/text.h"
#include "res/commands.h"
#include "res/strings.h"
#include "share/dialogs/category_choice.h"
#include "share/dialogs/form_procedure.h"
#include "store/escape_sql.h"
#include "update/auto_list.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>

#include <algorithm>
#include <optional>

namespace tidebrook {

namespace {

constexpr int nameLimit = 49;
constexpr int linkLimit = 511;
constexpr qsizetype linkTaken = 510;

/// What the database and the list of automatic updates hold of a channel.
struct Stored {
    bool isRead = false;
    QString link;
    std::optional<bool> isAutoUpdated; // unset when the list could not be read
};

Stored readStored(Device &device, const QString &category, const QString &channel) {
    Stored stored;
    stored.isRead = device.store.GetChannelLink(category, channel, stored.link);
    if (!stored.isRead)
        recordProblem(device, databaseProblemString);
    stored.link = TrimTrailingBlanks(stored.link).toString();
    stored.isAutoUpdated = isAutoUpdated(device.root, channel);
    return stored;
}

// The text that the user has changed, as the database keeps it; the old one when he has not: an
// edit may show less than there is. What a screen reader writes does not count as modified.
QString edited(const QLineEdit &edit, qsizetype limit, const QString &before) {
    if (edit.text() == before.left(edit.maxLength()))
        return before;
    const QString text = withoutDropped(withoutHalves(withoutControls(edit.text())));
    return TrimTrailingBlanks(cutText(text, limit)).toString();
}

} // namespace

/// The dialog over a channel.
class PropertiesDialog : public FormProcedure {
public:
    PropertiesDialog(AppState &state, const ChannelProperties &initial, QObject *receiver,
                     const JobEnd &applied)
        : FormProcedure(state, {PropertiesMenuBar, CommandCancelProperties, CommandPropertiesDone}),
          initial_(initial), receiver_(receiver), applied_(applied) {}

    void command(int id) override;

private:
    void initialise() override;
    void read();
    void showStored(const Stored &stored);
    void showCategories(const QStringList &names);
    ChannelProperties wanted() const;
    void apply();

    ChannelProperties initial_;
    QObject *const receiver_;
    const JobEnd applied_;
    QLineEdit *name_ = nullptr;
    QLineEdit *link_ = nullptr;
    QComboBox *category_ = nullptr;
    QAbstractButton *auto_ = nullptr;
    int shownCategory_ = -1;
};

void PropertiesDialog::initialise() {
    FormProcedure::initialise();
    name_ = dialog().control<QLineEdit>(ChannelNameEdit);
    link_ = dialog().control<QLineEdit>(ChannelLinkEdit);
    category_ = dialog().control<QComboBox>(CategoryDropDown);
    auto_ = dialog().control<QAbstractButton>(AutoUpdateBox);
    name_->setMaxLength(nameLimit);
    name_->setText(initial_.name);
    link_->setMaxLength(linkLimit);
    link_->setInputMethodHints(Qt::ImhUrlCharactersOnly | Qt::ImhNoAutoUppercase);
    read();
}

void PropertiesDialog::read() {
    beginWaiting();
    state().changes.ask(
        &dialog(),
        [&device = state().device, category = initial_.category, channel = initial_.name] {
            return readStored(device, category, channel);
        },
        [this](const Stored &stored) { showStored(stored); });
    readCategories(state(), &dialog(), [this](const QStringList &names) {
        showCategories(names.isEmpty() ? QStringList(initial_.category) : names);
    });
}

void PropertiesDialog::showStored(const Stored &stored) {
    initial_.link = stored.link;
    initial_.isAutoUpdated = stored.isAutoUpdated.value_or(false);
    link_->setText(stored.link);
    link_->home(false);
    auto_->setChecked(initial_.isAutoUpdated);
    if (!stored.isRead)
        ShowError(state(), databaseProblemString);
    else if (!stored.isAutoUpdated)
        ShowError(state(), fileProblemString);
}

// The exact category wins over one that only begins like it.
void PropertiesDialog::showCategories(const QStringList &names) {
    category_->addItems(names);
    const int exact = static_cast<int>(names.indexOf(initial_.category));
    const int similar = category_->findText(initial_.category, Qt::MatchStartsWith);
    category_->setCurrentIndex(std::max(0, exact >= 0 ? exact : similar));
    shownCategory_ = category_->currentIndex();
    endWaiting();
}

ChannelProperties PropertiesDialog::wanted() const {
    ChannelProperties wanted;
    wanted.category = category_->currentIndex() == shownCategory_
                          ? initial_.category
                          : cutText(category_->currentText(), categoryCapacity).toString();
    wanted.link = edited(*link_, linkTaken, initial_.link);
    wanted.name = edited(*name_, nameLimit, initial_.name);
    wanted.isAutoUpdated = auto_->isChecked();
    return wanted;
}

void PropertiesDialog::command(int id) {
    if (id == CommandPropertiesDone)
        apply();
    else if (id == CommandCancelProperties)
        leave(0);
}

void PropertiesDialog::apply() {
    const ChannelProperties to = wanted();
    const bool isChanged =
        to.category != initial_.category || to.link != initial_.link || to.name != initial_.name;
    const auto change = [from = initial_, to](LockedSubscriptions &subscriptions) {
        return subscriptions.changeChannel(from, to);
    };
    const bool isStarted = (!isChanged && to.isAutoUpdated == initial_.isAutoUpdated) ||
                           startChange(state(), receiver_, change, applied_);
    if (!isStarted)
        return tellProblem(state(), memoryProblemString);
    leave(isChanged ? 1 : 0);
}

int runChannelProperties(AppState &state, const QString &category, const QString &channel,
                         QObject *receiver, const JobEnd &applied) {
    PropertiesDialog properties(state, {category, channel, {}}, receiver, applied);
    return RunDialog(PropertiesTemplate, state.stack, properties);
}

} // namespace tidebrook
