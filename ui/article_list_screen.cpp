#include "ui/article_list_screen.h"

#include "app/data_jobs.h"
#include "app/messages.h"
#include "kit/dialog.h"
#include "kit/header_bar.h"
#include "kit/list_view.h"
#include "kit/screen_menu.h"
#include "kit/screen_stack.h"
#include "res/commands.h"
#include "res/strings.h"
#include "store/escape_sql.h"
#include "ui/article_view_screen.h"
#include "ui/row_painter.h"
#include "ui/update_commands.h"

#include <QPointer>

#include <utility>

namespace tidebrook {

namespace {

constexpr QStringView sortModeValue = u"SortMode";

constexpr int firstMode = static_cast<int>(SortMode::Date); // is stored as 0

quint32 numberOf(SortMode mode) { return static_cast<quint32>(static_cast<int>(mode) - firstMode); }

// An unknown number counts as the first order.
SortMode modeOf(quint32 stored) {
    return stored <= 2 ? static_cast<SortMode>(firstMode + static_cast<int>(stored))
                       : SortMode::Date;
}

ListRow rowOf(const ArticleRow &article) {
    return {.text = article.title,
            .detail = article.publicationDate,
            .image = article.isRead ? ReadImage : UnreadImage};
}

std::optional<QList<ListRow>> collectArticles(FeedStore &store, const QString &channel,
                                              SortMode mode, FillStop &stop) {
    QList<ArticleRow> articles;
    if (!store.ListArticles(channel, mode, articles))
        return std::nullopt;
    return makeRows(articles, stop, &rowOf);
}

} // namespace

ArticleListScreen::ArticleListScreen(AppState &state)
    : SteppedListScreen(state, {.screen = ArticleScreen,
                                .menuBarId = ArticleListMenuBar,
                                .refreshCommand = CommandRefreshArticles,
                                .backCommand = CommandBackToChannels,
                                .updateCommand = CommandUpdateArticles,
                                .nothingSelectedString = noArticleSelectedString,
                                .stopsByCommand = true,
                                .keepsPlace = true,
                                .names = state.channels,
                                .index = state.channelIndex}) {}

void ArticleListScreen::initialise() {
    state().articleRow = -1;
    SteppedListScreen::initialise();
    turnTo(state().todayChannel, channelNameCapacity);
    followUpdates(state().updates, dialog(), {CommandUpdateArticles});
    connect(&state().updates, &UpdateJobs::channelUpdated, this,
            [this](const QString &category, const QString &channel) {
                if (category == this->category() && channel == name())
                    refreshSoon();
            });
    // A value of another type changes nothing, and is replaced when the screen ends.
    const auto read = [&device = state().device,
                       before = numberOf(state().sortMode)]() -> std::optional<quint32> {
        quint32 mode = before;
        if (device.settings.RegReadDword(programKey, sortModeValue, mode) ||
            device.registry.read(programKey, sortModeValue))
            return mode;
        return std::nullopt; // it could not be read
    };
    const auto then = [this](std::optional<quint32> mode) { begin(mode); };
    if (!state().settings.ask(&dialog(), read, then))
        begin(std::nullopt);
}

void ArticleListScreen::begin(std::optional<quint32> storedMode) {
    // The user may have chosen one meanwhile.
    if (storedMode && !std::exchange(isModeKnown_, true))
        state().sortMode = modeOf(*storedMode);
    showMode();
    if (state().todayTitle.isEmpty())
        refreshSoon();
    else
        dialog().post(CommandOpenArticle);
}

void ArticleListScreen::command(int id) {
    switch (id) {
    case CommandSortByDate:
        return sortBy(SortMode::Date);
    case CommandSortByStatus:
        return sortBy(SortMode::Status);
    case CommandUnreadOnly:
        if (state().sortMode != SortMode::UnreadOnly)
            return sortBy(SortMode::UnreadOnly);
        return dialog().post(CommandSortByStatus);
    case CommandMarkAllRead:
        return markAll(&FeedStore::MarkChannelRead);
    case CommandMarkAllUnread:
        return markAll(&FeedStore::MarkChannelUnread);
    case CommandUpdateArticles:
        return startUpdate(state(), category(), name());
    case CommandOpenArticle:
        return openArticle();
    default:
        SteppedListScreen::command(id);
    }
}

SteppedListScreen::Collector ArticleListScreen::collector() const {
    return [&store = state().device.store, channel = name(), mode = state().sortMode](
               FillStop &stop) { return collectArticles(store, channel, mode, stop); };
}

void ArticleListScreen::sortBy(SortMode mode) {
    state().sortMode = mode;
    isModeKnown_ = true;
    showMode();
    setPlace({0, QString()});
    refreshSoon();
}

void ArticleListScreen::showMode() {
    const bool isPart = state().sortMode == SortMode::UnreadOnly;
    dialog().headerBar()->setNote(isPart ? resourceString(unreadOnlyString) : QString());
}

int ArticleListScreen::emptyString() const {
    return state().sortMode == SortMode::UnreadOnly ? nothingUnreadString : noArticleYetString;
}

void ArticleListScreen::markAll(bool (FeedStore::*mark)(const QString &channel)) {
    const auto work = [&device = state().device, channel = name(), mark] {
        const bool isStored = (device.store.*mark)(channel);
        device.store.PublishTotalUnread();
        return isStored ? 0 : recordProblem(device, databaseProblemString);
    };
    // The failure is shown over any screen.
    const auto end = [&state = state(), screen = QPointer(&dialog())](int messageId) {
        if (!screen.isNull())
            screen->post(CommandRefreshArticles);
        if (messageId != 0)
            ShowError(state, messageId);
    };
    if (!state().changes.ask(&state().stack, work, end))
        end(memoryProblemString);
}

void ArticleListScreen::open(int row) {
    state().articleRow = row;
    openArticle();
}

void ArticleListScreen::openTapped() {
    turnTo(state().todayChannel, channelNameCapacity);
    dialog().post(CommandOpenArticle);
}

void ArticleListScreen::openArticle() {
    ArticleViewScreen screen(state());
    const int result = RunDialog(ArticleViewTemplate, state().stack, screen);
    if (state().fillChannel == name())
        setPlace(placeBehind(screen));
    if (result == 1 || result == CommandBackToArticles)
        refreshSoon();
}

// Where the user goes on: at the article that was turned to, or at the next unread one, which has
// the place of the article that was opened, since that has moved or gone.
Place ArticleListScreen::placeBehind(const ArticleViewScreen &view) const {
    const bool isByTitle = view.hasTurned() || state().sortMode == SortMode::Date;
    const int gone = state().sortMode == SortMode::UnreadOnly ? view.readAbove() : 0;
    return {state().articleRow - gone, isByTitle ? state().fillTitle : QString()};
}

void ArticleListScreen::prepareMenu(ScreenMenu &menu) {
    SteppedListScreen::prepareMenu(menu);
    const int order = static_cast<int>(state().sortMode) - firstMode;
    menu.radioCheck(CommandSortByDate, CommandSortByStatus, CommandSortByDate + order);
    menu.check(CommandUnreadOnly, state().sortMode == SortMode::UnreadOnly);
}

void ArticleListScreen::close() {
    if (isModeKnown_) // else the stored one would be lost
        storeSetting(state(), sortModeValue, numberOf(state().sortMode));
    leave();
}

} // namespace tidebrook
