#include "ui/channel_list_screen.h"

#include "app/messages.h"
#include "app/today_taps.h"
#include "kit/dialog.h"
#include "kit/list_view.h"
#include "kit/screen_stack.h"
#include "res/commands.h"
#include "res/strings.h"
#include "share/dialogs/channel_properties.h"
#include "share/dialogs/new_channel_wizard.h"
#include "share/dialogs/opml_export.h"
#include "store/escape_sql.h"
#include "ui/article_list_screen.h"
#include "ui/row_painter.h"
#include "ui/update_commands.h"

#include <QPointer>

namespace tidebrook {

namespace {

// The database may have failed to open when the program started.
bool listChannels(FeedStore &store, const QString &category, QList<ChannelRow> &channels) {
    return store.ListChannelsByName(category, channels) ||
           (store.Open() && store.ListChannelsByName(category, channels));
}

QString countsText(int unread, int total) { return QStringLiteral("%1/%2").arg(unread).arg(total); }

ListRow rowOf(const ChannelRow &channel) {
    return {.text = channel.name,
            .detail = countsText(channel.unread, channel.total),
            .image = ChannelImage};
}

std::optional<QList<ListRow>> collectChannels(FeedStore &store, const QString &category,
                                              FillStop &stop) {
    QList<ChannelRow> channels;
    if (!listChannels(store, category, channels))
        return std::nullopt;
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

void ChannelListScreen::initialise() {
    SteppedListScreen::initialise();
    dialog().setKey(Qt::Key_Delete, CommandDeleteChannel);
    turnTo(state().todayCategory, categoryCapacity);
    followUpdates(state().updates, dialog(), {CommandUpdateChannel, CommandUpdateAll});
    connect(&state().updates, &UpdateJobs::channelUpdated, this, [this](const QString &category) {
        if (category == name())
            refreshSoon();
    });
    connect(&state().updates, &UpdateJobs::channelCounted, this,
            [this](const QString &category, const QString &channel, int unread, int total) {
                if (category == name())
                    showCounts(channel, unread, total);
            });
    refreshSoon();
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

int ChannelListScreen::emptyString() const { return noChannelYetString; }

// The channels are known now, so the tapped headline's channel can be opened.
void ChannelListScreen::filled() {
    if (state().todayChannel.isEmpty())
        return;
    const int tapped = findName(list().rowTexts(), state().todayChannel, channelNameCapacity);
    if (tapped < 0) {
        forgetTodayTap(state()); // the channel was deleted
        return;
    }
    state().channelIndex = tapped;
    dialog().post(CommandOpenArticles);
}

// A category that is newer than this list is known to the list of categories, once it has read.
void ChannelListScreen::openTapped() {
    if (turnTo(state().todayCategory, categoryCapacity))
        return;
    state().tap = {state().todayCategory, state().todayChannel, state().todayTitle};
    forgetTodayTap(state());
    leave();
}

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
    list().scrollTo(list().currentIndex());
    if (!askUser(state(), confirmDeletionString, deleteChannelString, channel))
        return;
    const auto erase = [channel](LockedSubscriptions &subscriptions) {
        return subscriptions.deleteChannel(channel);
    };
    if (!startChange(state(), &state().stack, erase, changeEnd()))
        changeEnd()(memoryProblemString);
}

// The screen, if it is still there, shows what has changed, also when a part of it failed. The
// failure is shown over any screen.
JobEnd ChannelListScreen::changeEnd() {
    return [&state = state(), screen = QPointer(&dialog())](int messageId) {
        if (!screen.isNull())
            screen->post(CommandRefreshChannels);
        showChangeEnd(state, messageId);
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

} // namespace tidebrook
