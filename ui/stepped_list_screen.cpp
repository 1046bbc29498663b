#include "ui/stepped_list_screen.h"

#include "app/list_font.h"
#include "app/messages.h"
#include "app/outside_changes.h"
#include "app/today_taps.h"
#include "kit/dialog.h"
#include "kit/header_bar.h"
#include "kit/keys.h"
#include "kit/list_view.h"
#include "kit/menu_bar.h"
#include "kit/screen_stack.h"
#include "platform/base/text.h"
#include "res/commands.h"
#include "res/strings.h"
#include "ui/column_width.h"
#include "ui/row_painter.h"
#include "ui/row_speech.h"

#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace tidebrook {

void SteppedListScreen::initialise() {
    list_ = dialog().control<ListView>(ListViewControl);
    dialog().makeMenuBar(kind_.menuBarId);
    dialog().setBackKeys(kind_.backCommand);
    setFontKeys(dialog());
    dialog().setKey(Qt::Key_F4, CommandShowChoices);
    dialog().setKey(Qt::Key_F5, kind_.updateCommand);
    state_.lists[kind_.screen] = list_;
    list_->setImages({"article-unread", "article-read", "channel"}); // as `RowImage` counts them
    list_->setItemDelegate(new RowPainter(*list_));
    list_->setSpeech(&rowSpeech);
    list_->setFont(state_.listFont);
    list_->setHasMenu(true);
    connect(list_, &ListView::menuWanted, dialog().menuBar(),
            qOverload<const QRect &>(&MenuBar::openMenu));
    connect(list_, &ListView::keyPressed, this, &SteppedListScreen::handleKey);
    connect(list_, &ListView::tapped, this, [this] {
        state_.fills.requestStop();
        openSelected();
    });
    connect(&OutsideChanges::of(state_), &OutsideChanges::noticed, this,
            &SteppedListScreen::follow);
    header().setSteppable();
    connect(&header(), &HeaderBar::choiceTaken, this, &SteppedListScreen::handleChoice);
    step(kind_.index);
}

HeaderBar &SteppedListScreen::header() const { return *dialog().headerBar(); }

void SteppedListScreen::step(int index) {
    header().hideChoices();
    const auto count = static_cast<int>(kind_.names.size());
    if (count == 0)
        return;
    kind_.index = (index + count) % count;
    place_.reset(); // of another list
    dialog().setTitle(name());
    list_->setAccessibleName(name());
}

void SteppedListScreen::command(int id) {
    switch (id) {
    case CommandPrevious:
        return stepByCommand(kind_.index - 1);
    case CommandNext:
        return stepByCommand(kind_.index + 1);
    case CommandShowChoices:
        return toggleChoices();
    case CommandHideChoices:
        return hideChoices();
    default:
        break;
    }
    if (id == kind_.backCommand)
        close();
    else if (id == kind_.refreshCommand)
        refresh();
    else if (chooseFontSize(state_, id))
        refreshSoon();
}

void SteppedListScreen::stepByCommand(int index) {
    if (kind_.stopsByCommand)
        state_.fills.requestStop();
    step(index);
    refreshSoon();
}

void SteppedListScreen::refreshSoon() { dialog().post(kind_.refreshCommand); }

void SteppedListScreen::refresh() {
    if (followTodayTap(state_))
        openTapped();
    if (!header().areChoicesVisible())
        list_->setFocus();
    const QString name = this->name();
    // The rows of the same name stay until others replace them.
    if (shown_ != name) {
        list_->setRows({});
        list_->setEmptyText({});
        shown_.reset();
    }
    if (!name.isNull())
        fill(name);
}

void SteppedListScreen::fill(const QString &name) {
    ++fills_;
    auto filling = std::make_shared<Filling>();
    const auto collect = [filling, &device = state_.device, read = collector()](FillStop &stop) {
        filling->rows = read(stop);
        if (!filling->rows)
            recordProblem(device, databaseProblemString);
        filling->isStopped = stop.isCounted();
    };
    const auto show = [this, filling, name] { showFilling(name, *filling); };
    state_.fills.launch(&dialog(), {collect, show, [this] { refreshSoon(); }});
}

void SteppedListScreen::showFilling(const QString &name, Filling &filling) {
    ++fills_;
    const bool isRead = filling.rows.has_value();
    if (isRead)
        showRows(name, std::move(*filling.rows));
    else
        showReadFailure();
    if (filling.isStopped)
        refreshSoon(); // reads the rest
    else if (isRead)
        filled();
    if (std::exchange(isFollowOwed_, false))
        follow();
}

// Reads in order with the user's changes, and beside the fills, whose stops are not meant for it. A
// failure is not shown: the user has asked for nothing.
void SteppedListScreen::follow() {
    if (state_.stack.top() != &dialog() || !shown_) {
        isFollowOwed_ = true;
        return;
    }
    const auto collect = [read = collector()] {
        const std::atomic<int> noStops = 0;
        const std::atomic<bool> isFinished = false;
        FillStop stop(noStops, isFinished);
        return read(stop);
    };
    state_.changes.ask(&dialog(), collect,
                       [this, fills = fills_](const Rows &rows) { showFollowed(rows, fills); });
}

// Rows that were read beside a fill may be older than its own.
void SteppedListScreen::showFollowed(const Rows &rows, int fills) {
    if (fills != fills_ || state_.stack.top() != &dialog())
        return follow();
    if (!rows || shown_ != name())
        return;
    followRows(*list_, *rows);
    sized();
}

void SteppedListScreen::showReadFailure() {
    list_->setRows({});
    list_->setEmptyText({});
    shown_.reset();
    forgetTodayTap(state_); // else it would open at a later refresh
    ShowError(state_, databaseProblemString);
}

void SteppedListScreen::showRows(const QString &name, QList<ListRow> rows) {
    const bool isSame = shown_ == name;
    shown_ = name;
    list_->setEmptyText(resourceString(emptyString()));
    if (isSame && kind_.keepsPlace) {
        replaceRows(std::move(rows));
    } else {
        list_->setRows(std::move(rows));
        selectPlace(*list_, std::exchange(place_, std::nullopt).value_or(Place{0, {}}));
    }
    sized();
}

// The list stays scrolled where it is, unless a place was set.
void SteppedListScreen::replaceRows(QList<ListRow> rows) {
    QScrollBar &bar = *list_->verticalScrollBar();
    const int scrolled = bar.value();
    const Place selected{SelectedRow(list_), list_->rowText(SelectedRow(list_))};
    list_->setRows(std::move(rows));
    list_->doItemsLayout();
    bar.setValue(scrolled);
    const auto place = std::exchange(place_, std::nullopt);
    selectPlace(*list_, place.value_or(selected));
    if (!place)
        bar.setValue(scrolled);
}

void SteppedListScreen::toggleChoices() {
    if (header().areChoicesVisible()) {
        dialog().post(CommandHideChoices);
        return;
    }
    header().setChoices(kind_.names, kind_.index);
    header().showChoices();
}

void SteppedListScreen::hideChoices() {
    header().hideChoices();
    list_->selectRow(0);
    list_->setFocus();
}

void SteppedListScreen::handleChoice(int index) {
    state_.fills.requestStop();
    step(index);
    refreshSoon();
}

void SteppedListScreen::handleKey(int key, bool &isTaken) {
    const bool isStep = key == Qt::Key_Left || key == Qt::Key_Right;
    isTaken = isStep || isEnter(key);
    if (isEnter(key))
        return openSelected();
    if (!isStep)
        return;
    if (!kind_.stopsByCommand)
        state_.fills.requestStop();
    command(key == Qt::Key_Left ? CommandPrevious : CommandNext);
}

std::optional<int> SteppedListScreen::selection() {
    const int row = SelectedRow(list_);
    if (row >= 0)
        return row;
    ShowMessage(state_, warningString, kind_.nothingSelectedString);
    return std::nullopt;
}

void SteppedListScreen::openSelected() {
    if (const auto row = selection())
        open(*row);
}

void SteppedListScreen::activated() {
    if (std::exchange(isFollowOwed_, false))
        follow();
    lookForTodayTap(state_);
}

// The refresh comes, and leads to the headline, once the screen is on top.
bool SteppedListScreen::summoned() {
    refreshSoon();
    return true;
}

void SteppedListScreen::sized() { fitColumn(*list_, state_.stack); }

void SteppedListScreen::prepareMenu(ScreenMenu &menu) {
    checkFontSize(state_, menu);
    keepRow(menu, *list_);
}

void SteppedListScreen::leave() {
    state_.lists[kind_.screen] = nullptr;
    kind_.names.clear();
    forgetTodayTap(state_);
    dialog().end(1);
}

bool SteppedListScreen::turnTo(const QString &name, qsizetype capacity) {
    const int found = findName(kind_.names, name, capacity);
    if (found >= 0)
        step(found);
    return found >= 0;
}

int findName(const QStringList &names, const QString &name, qsizetype capacity) {
    if (name.isEmpty())
        return -1;
    const auto found = std::find_if(names.begin(), names.end(), [&](const QString &candidate) {
        return cutText(candidate, capacity) == cutText(name, capacity);
    });
    return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

} // namespace tidebrook
