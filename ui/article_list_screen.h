#pragma once

#include "ui/stepped_list_screen.h"

namespace tidebrook {

/// The third screen: the articles of the channel that was chosen in the second, in the order that
/// the user chose last. It ends with 1, which has the second screen refresh.
class ArticleListScreen : public SteppedListScreen {
public:
    explicit ArticleListScreen(AppState &state);

    bool initialise(Dialog &dialog) override;
    void command(int id) override;
    void close() override;
    void prepareMenu(ScreenMenu &menu) override;

private:
    Collector collector() const override;
    void open(int row) override;
    void openTapped() override;

    QString category() const { return state().categories.value(state().currentCategory); }
    void begin(std::optional<quint32> storedMode);
    void sortBy(SortMode mode);
    void markAll(bool (FeedStore::*mark)(const QString &channel));
    void openArticle();

    bool isModeKnown_ = false; // it was read, or chosen
};

} // namespace tidebrook
