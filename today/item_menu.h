#pragma once

#include "today/today_state.h"

#include <QMenu>

namespace tidebrook {

/// The menu of the Today item: of the strip, or of the tray icon, where it lists headlines, too.
class ItemMenu : public QMenu {
    Q_OBJECT

public:
    /// `headlineLimit` headlines at most are listed.
    explicit ItemMenu(int headlineLimit = 0);

    void setState(const TodayState &state);

Q_SIGNALS:
    void headlineChosen(const Headline &headline);
    void openChosen();
    void updateChosen();
    void markChosen(); ///< the headline that the strip showed
    void settingsChosen();
    void hideChosen();

private:
    void listHeadlines(const QList<Headline> &headlines);

    const int headlineLimit_;
    QList<Headline> listed_;
    QList<QAction *> entries_; // of the headlines
    QAction *end_ = nullptr;   // of the headlines
    QAction *mark_ = nullptr;  // none without the strip
};

} // namespace tidebrook
