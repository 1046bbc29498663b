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

#include <algorithm>
#include <memory>
#include <utility>

namespace tidebrook {

namespace {

constexpr int linkLimit = 512;
constexpr int zoomOfSmall = 2;

int zoomOf(const AppState &state) { return zoomOfSmall + fontSizeIndex(state); }

QStringList titlesOf(FeedStore &store, const QString &channel, SortMode mode) {
    QList<ArticleRow> articles;
    QStringList titles;
    if (store.ListArticles(channel, mode, articles)) {
        for (const ArticleRow &article : std::as_const(articles))
            titles.append(article.title);
    }
    return titles;
}

} // namespace

/// An article, and the page that a job builds of it.
struct ArticleViewScreen::Building {
    QString channel;
    QString title;
    SortMode mode = SortMode::Date;
    bool isListWanted = false;
    std::optional<QString> page; ///< nothing when the article could not be read
    QStringList titles;          ///< of the list that the article is in
    bool isGone = false;         ///< the article does not exist any more
    bool isDropped = false;      ///< a stop was requested meanwhile
};

// Reading the article is what marks it read.
void ArticleViewScreen::build(Device &device, Building &building) {
    FeedStore &store = device.store;
    if (building.isListWanted)
        building.titles = titlesOf(store, building.channel, building.mode);
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
    connect(page_, &TextPage::turned, this, &ArticleViewScreen::turn);
    const bool isMirrored = dialog().layoutDirection() == Qt::RightToLeft;
    dialog().setKey(Qt::Key_Left, isMirrored ? CommandNext : CommandPrevious);
    dialog().setKey(Qt::Key_Right, isMirrored ? CommandPrevious : CommandNext);
    setFontKeys(dialog());
    page_->setZoom(zoomOf(state_));
    chooseArticle();
    buildPage();
}

void ArticleViewScreen::chooseArticle() {
    if (!state_.todayTitle.isEmpty()) {
        takeOver();
        return;
    }
    if (const ListView *list = state_.lists[ArticleScreen])
        titles_ = list->rowTexts();
    state_.fillTitle = titles_.value(state_.articleRow);
    state_.fillChannel = state_.channels.value(state_.channelIndex);
}

void ArticleViewScreen::turn(int by) {
    const int row = state_.articleRow + by;
    if (isTapped_ || state_.articleRow < 0 || row < 0 || row >= titles_.size())
        return;
    state_.articleRow = row;
    state_.fillTitle = titles_[row];
    buildPage();
}

int ArticleViewScreen::readAbove() const {
    return static_cast<int>(
        std::ranges::count_if(read_, [this](int row) { return row < state_.articleRow; }));
}

// Shows the article of the tapped headline.
void ArticleViewScreen::takeOver() {
    state_.fillTitle = state_.todayTitle;
    state_.fillChannel = state_.todayChannel;
    forgetTodayTap(state_);
    isTapped_ = true;
}

void ArticleViewScreen::buildPage() {
    dialog().setTitle(state_.fillChannel);
    auto building = std::make_shared<Building>();
    building->channel = state_.fillChannel;
    building->title = state_.fillTitle;
    building->mode = state_.sortMode;
    building->isListWanted = isTapped_;
    if (!isTapped_)
        read_.insert(state_.articleRow);
    const bool isLaunched =
        state_.fills.launch(&dialog(), {.collect =
                                            [&device = state_.device, building](FillStop &stop) {
                                                build(device, *building);
                                                building->isDropped = stop.isPending();
                                            },
                                        .show = [this, building] { show(*building); },
                                        .again = [this] { buildPage(); }});
    if (!isLaunched)
        stayAtShown();
}

void ArticleViewScreen::show(const Building &building) {
    if (building.isDropped)
        return buildPage();
    if (!building.page)
        return showFailure();
    if (isTapped_ && building.isGone) // the article was deleted before its headline was tapped
        return dialog().post(CommandBackToArticles);
    if (std::exchange(isTapped_, false)) {
        titles_ = building.titles;
        state_.articleRow =
            static_cast<int>(titles_.indexOf(cutText(building.title, titleCapacity)));
        read_ = {state_.articleRow};
    }
    shown_ = Shown{building.channel, building.title, state_.articleRow};
    page_->setPage(*building.page);
}

void ArticleViewScreen::showFailure() {
    stayAtShown();
    ShowError(state_, databaseProblemString);
}

// The page stays, and with it what is saved, sent and turned from.
void ArticleViewScreen::stayAtShown() {
    if (!shown_)
        return;
    isTapped_ = false;
    state_.fillChannel = shown_->channel;
    state_.fillTitle = shown_->title;
    state_.articleRow = shown_->row;
    dialog().setTitle(state_.fillChannel);
}

void ArticleViewScreen::command(int id) {
    switch (id) {
    case CommandBackToArticles:
        return close();
    case CommandPrevious:
        return turn(-1);
    case CommandNext:
        return turn(1);
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
