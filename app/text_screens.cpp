#include "app/text_screens.h"

#include "kit/dialog.h"
#include "kit/dialog_procedure.h"
#include "kit/header_bar.h"
#include "kit/page/text_page.h"
#include "res/about.h"
#include "res/commands.h"
#include "res/icons.h"
#include "res/ids.h"
#include "res/strings.h"

#include <QLabel>

namespace tidebrook {

namespace {

// Something to read, and a soft key to go back.
class TextScreen : public DialogProcedure {
public:
    bool initialise(Dialog &dialog) override {
        dialog_ = &dialog;
        return dialog.makeMenuBar(TextMenuBar) && showText(dialog);
    }
    void command(int id) override {
        if (id == CommandDone)
            dialog_->end(1);
    }
    void close() override { dialog_->end(0); }
    std::optional<int> backCommand() const override { return CommandDone; }

private:
    virtual bool showText(Dialog &dialog) = 0;

    Dialog *dialog_ = nullptr;
};

class AboutScreen : public TextScreen {
    bool showText(Dialog &dialog) override {
        dialog.makeHeaderBar(resourceString(aboutString));
        dialog.control<QLabel>(AboutLabel)->setText(aboutText());
        return true;
    }
};

class HelpScreen : public TextScreen {
    bool showText(Dialog &dialog) override {
        dialog.makeHeaderBar(resourceString(programNameString));
        page_ = dialog.control<TextPage>(HelpPageControl);
        if (page_ == nullptr)
            return false;
        page_->setPage(QString::fromUtf8(helpPage()));
        QObject::connect(page_, &TextPage::linkTapped, page_, [this](const QString &target) {
            if (target.startsWith(QLatin1Char('#')))
                page_->scrollToAnchor(target.mid(1));
        });
        return true;
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

void showHelp(AppState &state) {
    HelpScreen screen;
    RunDialog(HelpTemplate, state.stack, screen);
}

void showAbout(AppState &state) {
    AboutScreen screen;
    RunDialog(AboutTemplate, state.stack, screen);
}

} // namespace tidebrook
