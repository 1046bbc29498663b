#include "share/dialogs/category_page.h"

#include "kit/dialog.h"
#include "platform/base/text.h"
#include "res/commands.h"
#include "share/dialogs/category_choice.h"
#include "share/feed_probe.h"
#include "store/escape_sql.h"

#include <QComboBox>

namespace tidebrook {

CategoryPage::CategoryPage(const ChannelAdding &adding, const QList<ChannelRecord> &channels)
    : FormProcedure(adding.state, {CategoryChoiceMenuBar, CommandWizardBack, CommandFinish}),
      adding_(adding), channels_(channels) {}

void CategoryPage::initialise() {
    FormProcedure::initialise();
    categories_ = dialog().control<QComboBox>(CategoryDropDown);
    beginWaiting();
    readCategories(state(), &dialog(), [this](const QStringList &names) {
        endWaiting();
        if (names.isEmpty())
            leave(CommandWizardBack);
        else
            showCategories(names);
    });
}

void CategoryPage::showCategories(const QStringList &names) {
    categories_->addItems(names);
    const QString middle = names.value(names.size() / 2);
    categories_->setCurrentIndex(categories_->findText(middle, Qt::MatchStartsWith));
}

void CategoryPage::command(int id) {
    switch (id) {
    case CommandFinish:
        return hasNoName() ? probe() : finish();
    case CommandWizardGoOn:
        return finish();
    case CommandWizardBack:
        return leave(CommandWizardBack);
    default:
        break;
    }
}

bool CategoryPage::hasNoName() const {
    return channels_.size() == 1 && channels_.first().channelName.isEmpty();
}

void CategoryPage::probe() {
    isProbing_ =
        isProbing_ ||
        await([&registry = state().device.registry, url = channels_.first().channelLink](
                  const StopSignal &stop) { return probeTitle(registry, url, {.stop = &stop}); },
              [this](const std::optional<QString> &title) {
                  channels_.first().channelName = title.value_or(QString());
                  dialog().post(CommandWizardGoOn);
              });
}

void CategoryPage::finish() {
    add();
    leave(CommandFinish);
}

// The channel is added also when the user has finished, but does not wait for the feed's title.
void CategoryPage::close() {
    if (isProbing_)
        add();
    leave(0);
}

void CategoryPage::add() {
    const QString category = cutText(categories_->currentText(), categoryCapacity).toString();
    for (ChannelRecord &channel : channels_)
        channel.category = category;
    startAdding(adding_, channels_);
}

} // namespace tidebrook
