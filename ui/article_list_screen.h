#pragma once

#include "ui/stepped_list_screen.h"

namespace tidebrook {

class ArticleViewScreen;

/// The third screen: the articles of the channel that was opened, in the order that was chosen
/// last. It ends with 1, on which the second screen refreshes.
class ArticleListScreen : public SteppedListScreen {
public:
    explicit ArticleListScreen(AppState &state);

    void command(int id) override;
    void close() override;
    void prepareMenu(ScreenMenu &menu) override;

private:
    void initialise() override;
    Collector collector() const override;
    int emptyString() const override;
    void open(int row) override;
    void openTapped() override;

    QString category() const { return state().categories.value(state().currentCategory); }
    void begin(std::optional<quint32> storedMode);
    void sortBy(SortMode mode);
    void showMode();
    void markAll(bool (FeedStore::*mark)(const QString &channel));
    void openArticle();
    Place placeBehind(const ArticleViewScreen &view) const;

    bool isModeKnown_ = false; // it was read, or chosen
};

} // namespace tidebrook
