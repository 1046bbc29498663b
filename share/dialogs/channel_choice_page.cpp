#include "share/dialogs/channel_choice_page.h"

#include "app/messages.h"
#include "kit/dialog.h"
#include "kit/list_view.h"
#include "kit/screen_stack.h"
#include "res/commands.h"
#include "share/dialogs/category_page.h"
#include "share/opml_reader.h"

#include <QAbstractButton>

#include <utility>

namespace tidebrook {

namespace {

constexpr int besideColumn = 15; // dialog units, for the scroll bar

} // namespace

ChannelChoicePage::ChannelChoicePage(const ChannelAdding &adding, AddMode mode,
                                     const QString &source)
    : FormProcedure(adding.state, {ChannelChoiceMenuBar, CommandWizardBack, CommandWizardNext}),
      adding_(adding), mode_(mode), source_(source) {}

void ChannelChoicePage::initialise() {
    FormProcedure::initialise();
    list_ = dialog().control<ListView>(ChannelChoiceList);
    all_ = dialog().control<QAbstractButton>(AllChannelsBox);
    list_->setFont(state().listFont);
    connect(all_, &QAbstractButton::clicked, this, &ChannelChoicePage::checkAll);
    connect(list_->model(), &QAbstractItemModel::dataChanged, this,
            [this] { all_->setChecked(areAllChecked()); });
    openList();
}

void ChannelChoicePage::openList() {
    const auto open = [&device = state().device, mode = mode_,
                       source = source_](const StopSignal &stop) {
        OpmlReader reader(device.root, device.registry, HttpLimits{.stop = &stop});
        return reader.open(mode, source) ? std::optional(reader.takeChannels()) : std::nullopt;
    };
    await(open, [this](const std::optional<QList<ChannelRecord>> &channels) {
        if (channels)
            showChannels(*channels);
        else
            ShowError(state(), 0);
    });
}

void ChannelChoicePage::showChannels(const QList<ChannelRecord> &channels) {
    channels_ = channels;
    QList<ListRow> rows;
    for (const ChannelRecord &channel : channels)
        rows.append({channel.channelName});
    list_->setRows(std::move(rows));
    list_->selectRow(0);
}

void ChannelChoicePage::checkAll(bool isChecked) {
    for (int row = 0; row < list_->rowCount(); ++row)
        list_->setChecked(row, isChecked);
}

bool ChannelChoicePage::areAllChecked() const {
    for (int row = 0; row < list_->rowCount(); ++row) {
        if (!list_->isChecked(row))
            return false;
    }
    return list_->rowCount() > 0;
}

QList<ChannelRecord> ChannelChoicePage::checkedChannels() {
    QList<ChannelRecord> channels;
    for (int row = 0; row < list_->rowCount(); ++row) {
        if (list_->isChecked(row))
            channels.append(channels_[row]);
    }
    return channels;
}

void ChannelChoicePage::command(int id) {
    if (id == CommandWizardNext)
        goOn();
    else if (id == CommandWizardBack)
        leave(CommandWizardBack);
}

void ChannelChoicePage::goOn() {
    CategoryPage page(adding_, checkedChannels());
    const int result = RunDialog(CategoryChoiceTemplate, state().stack, page);
    if (result != CommandWizardBack)
        leave(result);
}

void ChannelChoicePage::sized() {
    const DialogUnits units = state().stack.units();
    list_->setColumnWidth(units.screen().width() - units.pixels(besideColumn));
}

} // namespace tidebrook
