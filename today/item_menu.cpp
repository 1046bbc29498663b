#include "today/item_menu.h"

#include "platform/base/text.h"
#include "res/strings.h"

namespace tidebrook {

namespace {

constexpr int longestEntry = 60; // characters

// As an entry's text, in which an "&" underlines the next character.
QString entryText(const Headline &headline) {
    QString text = shownHeadline(headline);
    if (text.size() > longestEntry)
        text = cutText(text, longestEntry - 1).trimmed() + u'…';
    return text.replace(u'&', QStringLiteral("&&"));
}

} // namespace

ItemMenu::ItemMenu(int headlineLimit) : headlineLimit_(headlineLimit) {
    end_ = addSeparator();
    end_->setVisible(false);
    addAction(resourceString(todayOpenString), this, &ItemMenu::openChosen);
    addAction(resourceString(todayUpdateString), this, &ItemMenu::updateChosen);
    if (headlineLimit_ == 0)
        mark_ = addAction(resourceString(todayMarkString), this, &ItemMenu::markChosen);
    addAction(resourceString(todaySettingsString), this, &ItemMenu::settingsChosen);
    addAction(resourceString(todayHideString), this, &ItemMenu::hideChosen);
}

void ItemMenu::setState(const TodayState &state) {
    if (mark_ != nullptr)
        mark_->setEnabled(state.news == TodayState::News::Unread);
    listHeadlines(state.headlines.mid(0, headlineLimit_));
}

void ItemMenu::listHeadlines(const QList<Headline> &headlines) {
    if (headlines == listed_)
        return;
    listed_ = headlines;
    qDeleteAll(std::exchange(entries_, {}));
    for (const Headline &headline : headlines) {
        auto *entry = new QAction(entryText(headline), this);
        connect(entry, &QAction::triggered, this,
                [this, headline] { Q_EMIT headlineChosen(headline); });
        insertAction(end_, entry);
        entries_.append(entry);
    }
    end_->setVisible(!headlines.isEmpty());
}

} // namespace tidebrook

#include "moc_item_menu.cpp"
