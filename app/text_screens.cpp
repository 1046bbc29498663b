#include "app/text_screens.h"

#include "kit/dialog.h"
#include "kit/dialog_procedure.h"
#include "kit/header_bar.h"
#include "kit/page/text_page.h"
#include "res/about.h"
#include "res/commands.h"
#include "res/icons.h"
#include "res/strings.h"

#include <QLabel>

namespace tidebrook {

namespace {

// Something to read, and a soft key to go back.
class TextScreen : public DialogProcedure {
public:
    void command(int id) override {
        if (id == CommandDone)
            dialog().end(1);
    }
    bool hasHelp() const override { return false; }

protected:
    virtual MenuBarId menuBar() const { return TextMenuBar; }
    void initialise() override {
        dialog().makeMenuBar(menuBar());
        dialog().setBackKeys(CommandDone);
    }
};

class AboutScreen : public TextScreen {
    void command(int id) override {
        if (id == CommandHelp)
            showHelp(dialog().stack());
        else
            TextScreen::command(id);
    }
    bool hasHelp() const override { return true; }
    MenuBarId menuBar() const override { return AboutMenuBar; }
    void initialise() override {
        TextScreen::initialise();
        dialog().headerBar()->setCaption(resourceString(aboutString));
        dialog().control<QLabel>(AboutLabel)->setText(aboutText());
    }
};

class HelpScreen : public TextScreen {
    void initialise() override {
        TextScreen::initialise();
        dialog().headerBar()->setCaption(resourceString(programNameString));
        page_ = dialog().control<TextPage>(HelpPageControl);
        page_->setPage(QString::fromUtf8(helpPage()));
        connect(page_, &TextPage::linkTapped, this, [this](const QString &target) {
            if (target.startsWith(QLatin1Char('#')))
                page_->scrollToAnchor(target.mid(1));
        });
    }
    // Not before the page has its size, and once: the user's place in it is kept.
    void activated() override {
        if (!std::exchange(isAtAnchor_, true))
            page_->scrollToAnchor(QStringLiteral("FeedlarkHelp"));
    }

    TextPage *page_ = nullptr;
    bool isAtAnchor_ = false;
};

} // namespace

void showHelp(ScreenStack &stack) {
    HelpScreen screen;
    RunDialog(HelpTemplate, stack, screen);
}

void showAbout(ScreenStack &stack) {
    AboutScreen screen;
    RunDialog(AboutTemplate, stack, screen);
}

} // namespace tidebrook
