#include "ui/channel_list_screen.h"

#include "app/base/list_font.h"
#include "app/base/messages.h"
#include "app/base/text_screens.h"
#include "res/commands.h"
#include "res/strings.h"
#include "store/escape_sql.h"
#include "ui/column_width.h"
#include "ui/kit/dialog.h"
#include "ui/kit/header_bar.h"
#include "ui/kit/list_view.h"
#include "ui/kit/menu_bar.h"
#include "ui/kit/screen_menu.h"
#include "ui/kit/screen_stack.h"

#include <memory>
#include <optional>
#include <utility>

namespace tidebrook {

namespace {

constexpr int listId = 802;
constexpr int menuBarId = 403;

// A database that was not to be had when the program started may be had by now.
bool listChannels(FeedStore &store, const QString &category) {
    const QString escaped = escapedCategory(category);
    return store.ListChannels(escaped) || (store.Open() && store.ListChannels(escaped));
}

// Nothing when they cannot be read.
std::optional<QList<ListRow>> collectChannels(FeedStore &store, const QString &category,
                                              FillStop &stop) {
    QList<ChannelRow> channels;
    {
        const auto guard = store.lock();
        if (!listChannels(store, category))
            return std::nullopt;
        channels = store.takeChannelRows();
    }
    QList<ListRow> rows;
    rows.reserve(channels.size());
    for (const ChannelRow &channel : channels) {
        if (stop.isRequested())
            break;
        rows.append({.text = channel.nameText(),
                     .detail = QStringLiteral("%1/%2").arg(channel.unread).arg(channel.total),
                     .image = 0});
    }
    return rows;
}

} // namespace

bool ChannelListScreen::initialise(Dialog &dialog) {
    dialog_ = &dialog;
    list_ = dialog.control<ListView>(listId);
    if (list_ == nullptr || !dialog.makeMenuBar(menuBarId))
        return false;
    state_.lists[ChannelScreen] = list_;
    list_->setImages({"channel"});
    list_->setFont(state_.listFont);
    if (const qsizetype tapped = state_.categories.indexOf(state_.todayTap.category); tapped >= 0)
        state_.currentCategory = static_cast<int>(tapped);
    dialog.makeHeaderBar(category());
    list_->setAccessibleName(category());
    // What the other entries open is not there yet.
    for (const int pending : {CommandUpdateChannel, CommandUpdateAll, CommandNewChannel,
                              CommandDeleteChannel, CommandExportChannel, CommandProperties})
        dialog.menuBar()->enable(pending, false);
    dialog.post(CommandRefreshChannels);
    return true;
}

void ChannelListScreen::command(int id) {
    if (id == CommandBackToCategories)
        close();
    else if (id == CommandRefreshChannels)
        refresh();
    else if (chooseFontSize(state_, id))
        dialog_->post(CommandRefreshChannels);
}

void ChannelListScreen::refresh() {
    list_->setFocus();
    list_->setRows({});
    if (category().isNull())
        return;
    auto rows = std::make_shared<std::optional<QList<ListRow>>>();
    state_.fills.launch(
        dialog_,
        {.collect = [&store = *state_.device.store, category = category(),
                     rows](FillStop &stop) { *rows = collectChannels(store, category, stop); },
         .show = [this, rows] { showRows(std::move(*rows)); },
         .again = [this] { dialog_->post(CommandRefreshChannels); }});
}

void ChannelListScreen::showRows(std::optional<QList<ListRow>> rows) {
    if (!rows) {
        ShowError(state_, databaseProblemString);
        return;
    }
    list_->setRows(std::move(*rows));
    list_->selectRow(0);
    sized();
}

void ChannelListScreen::sized() {
    list_->setColumnWidth(listColumnWidth(state_.stack.size(), list_->rowCount(), *list_));
}

void ChannelListScreen::close() {
    state_.lists[ChannelScreen] = nullptr;
    state_.todayTap = {};
    dialog_->end(1);
}

void ChannelListScreen::helpRequested() { showHelp(state_); }

std::optional<int> ChannelListScreen::backCommand() const { return CommandBackToCategories; }

void ChannelListScreen::prepareMenu(ScreenMenu &menu) { checkFontSize(state_, menu); }

} // namespace tidebrook
