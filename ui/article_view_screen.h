#pragma once

#include "app/app_state.h"
#include "kit/dialog_procedure.h"
#include "share/article_sharing.h"

namespace tidebrook {

class TextPage;

/// The fourth screen: one article. Opening it marks the article read. It ends with 1, on which the
/// article list refreshes.
class ArticleViewScreen : public DialogProcedure {
public:
    explicit ArticleViewScreen(AppState &state) : state_(state) {}

    void command(int id) override;
    void activated() override;
    bool summoned() override;
    void close() override;
    void prepareMenu(ScreenMenu &menu) override;

private:
    void initialise() override;
    void chooseArticle();
    void takeOver();
    struct Building;
    void buildPage();
    static void build(Device &device, Building &building);
    void show(const Building &building);
    void save(SaveKind kind);
    void send(SendKind kind);
    void openTarget(const QString &target);

    AppState &state_;
    TextPage *page_ = nullptr;
    bool isTapped_ = false; // the article is a tapped headline whose row is not known yet
};

} // namespace tidebrook
