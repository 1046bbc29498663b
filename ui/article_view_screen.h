#pragma once

#include "app/app_state.h"
#include "kit/dialog_procedure.h"
#include "share/article_sharing.h"

#include <QSet>
#include <QStringList>

#include <optional>

namespace tidebrook {

class TextPage;

/// The fourth screen: one article. Opening it marks the article read. From there the user turns to
/// the articles before and after it in the list, whose row is then `AppState::articleRow`. It ends
/// with 1, on which the article list refreshes.
class ArticleViewScreen : public DialogProcedure {
public:
    explicit ArticleViewScreen(AppState &state) : state_(state) {}

    void command(int id) override;
    void activated() override;
    bool summoned() override;
    void close() override;
    void prepareMenu(ScreenMenu &menu) override;

    /// Whether the user turned to another article than the one that was opened first.
    bool hasTurned() const { return read_.size() > 1; }
    /// How many articles above the one that was shown last were read.
    int readAbove() const;

private:
    void initialise() override;
    void chooseArticle();
    void takeOver();
    void turn(int by);
    struct Building;
    struct Shown {
        QString channel;
        QString title;
        int row;
    };
    void buildPage();
    static void build(Device &device, Building &building);
    void show(const Building &building);
    void showFailure();
    void stayAtShown();
    void save(SaveKind kind);
    void send(SendKind kind);
    void openTarget(const QString &target);

    AppState &state_;
    TextPage *page_ = nullptr;
    bool isTapped_ = false;      // the article is a tapped headline whose row is not known yet
    QStringList titles_;         // of the list that the article is in, as it was when it was opened
    QSet<int> read_;             // the rows of that list whose articles were opened
    std::optional<Shown> shown_; // on the page
};

} // namespace tidebrook
