#include "ui/article_view_screen.h"

#include "app/list_font.h"
#include "app/messages.h"
#include "app/today_taps.h"
#include "kit/dialog.h"
#include "kit/list_view.h"
#include "kit/page/text_page.h"
#include "platform/base/text.h"
#include "platform/desktop/shell.h"
#include "res/commands.h"
#include "res/strings.h"
#include "share/dialogs/article_handing.h"
#include "share/dialogs/reported_task.h"
#include "store/escape_sql.h"
#include "ui/article_page.h"

#include <memory>
#include <utility>

namespace tidebrook {

namespace {

constexpr int linkLimit = 512;
constexpr int zoomOfSmall = 2;

int zoomOf(const AppState &state) { return zoomOfSmall + fontSizeIndex(state); }

int rowOfTitle(FeedStore &store, const QString &channel, const QString &title, SortMode mode) {
    QList<ArticleRow> articles;
    if (!store.ListArticles(channel, mode, articles))
        return -1;
    int row = 0;
    for (const ArticleRow &article : std::as_const(articles)) {
        if (article.title == cutText(title, titleCapacity))
            return row;
        ++row;
    }
    return -1;
}

} // namespace

/// An article, and the page that a job builds of it.
struct ArticleViewScreen::Building {
    QString channel;
    QString title;
    SortMode mode = SortMode::Date;
    bool isRowWanted = false;
    std::optional<QString> page; ///< nothing when the article could not be read
    int row = -1;                ///< of the article in its list
    bool isGone = false;         ///< the article does not exist any more
    bool isDropped = false;      ///< a stop was requested meanwhile
};

// Reading the article is what marks it read.
void ArticleViewScreen::build(Device &device, Building &building) {
    FeedStore &store = device.store;
    if (building.isRowWanted)
        building.row = rowOfTitle(store, building.channel, building.title, building.mode);
    ArticleExtract detail;
    if (store.GetArticleDetail(building.channel, building.title, detail))
        building.page = articlePage(building.channel, building.title, detail);
    else
        recordProblem(device, databaseProblemString);
    building.isGone = detail.itemLink.isEmpty() && detail.description.isEmpty() &&
                      detail.publicationDate.isEmpty();
}

void ArticleViewScreen::initialise() {
    page_ = dialog().control<TextPage>(ArticlePageControl);
    dialog().makeMenuBar(ArticleViewMenuBar);
    dialog().setBackKeys(CommandBackToArticles);
    dialog().useTitleStrip();
    connect(page_, &TextPage::linkTapped, this, &ArticleViewScreen::openTarget);
    connect(page_, &TextPage::left, this, &ArticleViewScreen::buildPage);
    page_->setZoom(zoomOf(state_));
    chooseArticle();
    buildPage();
}

void ArticleViewScreen::chooseArticle() {
    if (!state_.todayTitle.isEmpty()) {
        takeOver();
        return;
    }
    const ListView *list = state_.lists[ArticleScreen];
    state_.fillTitle = list != nullptr ? list->rowText(state_.articleRow) : QString();
    state_.fillChannel = state_.channels.value(state_.channelIndex);
}

// Shows the article of the tapped headline.
void ArticleViewScreen::takeOver() {
    state_.fillTitle = state_.todayTitle;
    state_.fillChannel = state_.todayChannel;
    forgetTodayTap(state_);
    isTapped_ = true;
}

void ArticleViewScreen::buildPage() {
    auto building = std::make_shared<Building>();
    building->channel = state_.fillChannel;
    building->title = state_.fillTitle;
    building->mode = state_.sortMode;
    building->isRowWanted = isTapped_;
    state_.fills.launch(&dialog(), {.collect =
                                        [&device = state_.device, building](FillStop &stop) {
                                            build(device, *building);
                                            building->isDropped = stop.isPending();
                                        },
                                    .show = [this, building] { show(*building); },
                                    .again = [this] { buildPage(); }});
}

void ArticleViewScreen::show(const Building &building) {
    if (building.isDropped)
        return buildPage();
    if (!building.page)
        return ShowError(state_, databaseProblemString);
    if (isTapped_ && building.isGone) // the article was deleted before its headline was tapped
        return dialog().post(CommandBackToArticles);
    if (std::exchange(isTapped_, false))
        state_.articleRow = building.row;
    page_->setPage(*building.page);
}

void ArticleViewScreen::command(int id) {
    switch (id) {
    case CommandBackToArticles:
        return close();
    case CommandSaveLink:
        return save(SaveKind::Link);
    case CommandSaveArticle:
        return save(SaveKind::Article);
    case CommandSendByMail:
        return send(SendKind::Email);
    case CommandSendBySms:
        return send(SendKind::Sms);
    default:
        if (chooseFontSize(state_, id))
            page_->setZoom(zoomOf(state_));
    }
}

void ArticleViewScreen::save(SaveKind kind) {
    saveArticle(state_, state_.fillChannel, state_.fillTitle, kind);
}

void ArticleViewScreen::send(SendKind kind) {
    sendArticle(state_, state_.fillChannel, state_.fillTitle, kind);
}

void ArticleViewScreen::openTarget(const QString &target) {
    if (target.size() > linkLimit || !isOpenable(target)) {
        ShowMessage(state_, warningString, wrongUrlString);
        return;
    }
    startReportedTask(state_,
                      [target] { return openLink(target) ? 0 : unidentifiedProblemString; });
}

void ArticleViewScreen::activated() { lookForTodayTap(state_); }

bool ArticleViewScreen::summoned() {
    if (followTodayTap(state_)) {
        takeOver();
        buildPage();
    }
    return true;
}

void ArticleViewScreen::close() {
    state_.changes.tell([&store = state_.device.store] { store.PublishTotalUnread(); });
    dialog().end(1);
}

void ArticleViewScreen::prepareMenu(ScreenMenu &menu) { checkFontSize(state_, menu); }

} // namespace tidebrook
