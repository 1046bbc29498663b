#include "ui/channel_list_screen.h"

#include "app/messages.h"
#include "app/today_taps.h"
#include "kit/dialog.h"
#include "kit/list_view.h"
#include "kit/screen_stack.h"
#include "res/commands.h"
#include "res/ids.h"
#include "res/strings.h"
#include "share/dialogs/channel_properties.h"
#include "share/dialogs/new_channel_wizard.h"
#include "share/dialogs/opml_export.h"
#include "store/escape_sql.h"
#include "ui/article_list_screen.h"
#include "ui/row_painter.h"
#include "ui/update_commands.h"

#include <QKeyEvent>
#include <QPointer>

namespace tidebrook {

namespace {

// A database that was not to be had when the program started may be had by now.
bool listChannels(FeedStore &store, const QString &category) {
    const QString escaped = escapedCategory(category);
    return store.ListChannels(escaped) || (store.Open() && store.ListChannels(escaped));
}

QString countsText(int unread, int total) { return QStringLiteral("%1/%2").arg(unread).arg(total); }

ListRow rowOf(const ChannelRow &channel) {
    return {.text = channel.nameText(),
            .detail = countsText(channel.unread, channel.total),
            .image = ChannelImage};
}

std::optional<QList<ListRow>> collectChannels(FeedStore &store, const QString &category,
                                              FillStop &stop) {
    QList<ChannelRow> channels;
    {
        const auto guard = store.lock();
        if (!listChannels(store, category))
            return std::nullopt;
        channels = store.takeChannelRows();
    }
    return makeRows(channels, stop, &rowOf);
}

} // namespace

ChannelListScreen::ChannelListScreen(AppState &state)
    : SteppedListScreen(state, {.screen = ChannelScreen,
                                .menuBarId = ChannelListMenuBar,
                                .refreshCommand = CommandRefreshChannels,
                                .backCommand = CommandBackToCategories,
                                .updateCommand = CommandUpdateChannel,
                                .nothingSelectedString = noChannelSelectedString,
                                .stopsByCommand = false,
                                .keepsPlace = false,
                                .names = state.categories,
                                .index = state.currentCategory}) {}

bool ChannelListScreen::initialise(Dialog &dialog) {
    if (!SteppedListScreen::initialise(dialog))
        return false;
    turnTo(state().todayCategory, categoryCapacity);
    followUpdates(state(), dialog, {CommandUpdateChannel, CommandUpdateAll});
    QObject::connect(&state().updates, &UpdateJobs::channelUpdated, &dialog,
                     [this](const QString &category) {
                         if (category == name())
                             refreshSoon();
                     });
    QObject::connect(
        &state().updates, &UpdateJobs::channelCounted, &dialog,
        [this](const QString &category, const QString &channel, int unread, int total) {
            if (category == name())
                showCounts(channel, unread, total);
        });
    refreshSoon();
    return true;
}

void ChannelListScreen::command(int id) {
    switch (id) {
    case CommandUpdateChannel:
        return updateChannel();
    case CommandUpdateAll:
        return startUpdate(state(), name());
    case CommandNewChannel:
        return newChannel();
    case CommandDeleteChannel:
        return deleteChannel();
    case CommandExportChannel:
        return exportSelected();
    case CommandProperties:
        return showProperties();
    case CommandOpenArticles:
        return openArticles();
    default:
        SteppedListScreen::command(id);
    }
}

SteppedListScreen::Collector ChannelListScreen::collector() const {
    return [&store = state().device.store, category = name()](FillStop &stop) {
        return collectChannels(store, category, stop);
    };
}

// The headline that led here is to be found in one of the channels, which are known now.
void ChannelListScreen::filled() {
    if (state().todayChannel.isEmpty())
        return;
    const int tapped = findName(list().rowTexts(), state().todayChannel, channelNameCapacity);
    if (tapped < 0) {
        forgetTodayTap(state()); // it has gone since
        return;
    }
    state().channelIndex = tapped;
    dialog().post(CommandOpenArticles);
}

void ChannelListScreen::openTapped() { turnTo(state().todayCategory, categoryCapacity); }

void ChannelListScreen::open(int row) {
    state().channelIndex = row;
    openArticles();
}

void ChannelListScreen::openArticles() {
    state().channels = list().rowTexts();
    ArticleListScreen screen(state());
    if (RunDialog(ListTemplate, state().stack, screen) == 1)
        refreshSoon();
}

void ChannelListScreen::updateChannel() {
    if (const auto row = selection())
        startUpdate(state(), name(), list().rowText(*row));
}

void ChannelListScreen::deleteChannel() {
    const auto row = selection();
    if (!row)
        return;
    const QString channel = list().rowText(*row);
    if (!askUser(state(), confirmDeletionString, deleteChannelString))
        return;
    const auto erase = [channel](LockedSubscriptions &subscriptions) {
        return subscriptions.deleteChannel(channel);
    };
    if (!startChange(state(), &state().stack, erase, changeEnd()))
        changeEnd()(fileProblemString);
}

// What has changed is shown if the screen is still there, also when a part of it failed; that is
// told wherever the user has gone.
JobEnd ChannelListScreen::changeEnd() {
    return [&state = state(), screen = QPointer(&dialog())](int messageId) {
        if (!screen.isNull())
            screen->post(CommandRefreshChannels);
        if (messageId == nameExistsString)
            ShowMessage(state, warningString, messageId);
        else if (messageId != 0)
            ShowError(state, messageId);
    };
}

void ChannelListScreen::newChannel() {
    if (runNewChannelWizard(state(), &state().stack, changeEnd()) == 0)
        refreshSoon();
}

void ChannelListScreen::exportSelected() {
    if (const auto row = selection())
        exportChannel(state(), name(), list().rowText(*row));
}

void ChannelListScreen::showProperties() {
    const auto row = selection();
    if (!row)
        return;
    if (runChannelProperties(state(), name(), list().rowText(*row), &state().stack, changeEnd()) ==
        1)
        refreshSoon();
}

void ChannelListScreen::showCounts(const QString &channel, int unread, int total) {
    if (const int row = list().findRow(channel); row >= 0)
        list().setRowDetail(row, countsText(unread, total));
}

std::optional<int> ChannelListScreen::commandOfKey(const QKeyEvent &event) const {
    return event.key() == Qt::Key_Delete ? CommandDeleteChannel
                                         : SteppedListScreen::commandOfKey(event);
}

} // namespace tidebrook
