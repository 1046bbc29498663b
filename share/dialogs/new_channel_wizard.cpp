#include "share/dialogs/new_channel_wizard.h"

#include "app/messages.h"
#include "kit/dialog.h"
#include "kit/files/file_dialog.h"
#include "platform/base/text.h"
#include "res/commands.h"
#include "res/strings.h"
#include "share/add_mode.h"
#include "share/dialogs/category_page.h"
#include "share/dialogs/channel_choice_page.h"
#include "share/feed_probe.h"

#include <QAbstractButton>
#include <QLineEdit>

#include <algorithm>
#include <optional>

namespace tidebrook {

namespace {

constexpr int urlLimit = 511;
constexpr qsizetype longestTooShort = 11; // as "http://.xml"
constexpr QStringView scheme = u"http://";
constexpr QStringView secureScheme = u"https://";

// Addresses are requested in lower case. QString::toLower could change the length.
QString lowerCased(QString url) {
    std::transform(url.begin(), url.end(), url.begin(), [](QChar c) { return c.toLower(); });
    return url;
}

} // namespace

/// The wizard's first page: the user types an address or chooses a file. The document at the
/// address decides which page is next. It ends with the last command.
class HowToAddPage : public FormProcedure {
public:
    explicit HowToAddPage(const ChannelAdding &adding);

    void command(int id) override;

private:
    void initialise() override;
    void chooseWay();
    void dropSecondScheme();
    void goOnWithUrl();
    void goOnWithFile();
    void handleType();
    void openNext(AddMode mode, const QString &source);

    const ChannelAdding adding_;
    QAbstractButton *fromUrl_ = nullptr;
    QLineEdit *edit_ = nullptr;
    QString url_;
    std::optional<QString> type_; // of what the address leads to
};

HowToAddPage::HowToAddPage(const ChannelAdding &adding)
    : FormProcedure(adding.state, {HowToAddMenuBar, CommandCancelWizard, CommandWizardNext}),
      adding_(adding) {}

void HowToAddPage::initialise() {
    FormProcedure::initialise();
    fromUrl_ = dialog().control<QAbstractButton>(FromUrlButton);
    edit_ = dialog().control<QLineEdit>(AddressEdit);
    edit_->setMaxLength(urlLimit);
    edit_->setInputMethodHints(Qt::ImhUrlCharactersOnly | Qt::ImhNoAutoUppercase);
    edit_->setText(scheme.toString());
    connect(edit_, &QLineEdit::textEdited, this, &HowToAddPage::dropSecondScheme);
    fromUrl_->setChecked(true);
    for (const int id : {FromUrlButton, FromFileButton})
        connect(dialog().control<QAbstractButton>(id), &QAbstractButton::clicked, this,
                &HowToAddPage::chooseWay);
    dialog().setFirstFocus(edit_);
}

void HowToAddPage::chooseWay() {
    edit_->setReadOnly(!fromUrl_->isChecked());
    if (!fromUrl_->isChecked())
        return;
    edit_->setFocus();
    edit_->end(false);
}

// An address that is pasted behind the proposed scheme has its own.
void HowToAddPage::dropSecondScheme() {
    const QString text = edit_->text();
    const QStringView rest =
        text.startsWith(scheme) ? QStringView(text).sliced(scheme.size()) : QStringView();
    if (rest.startsWith(scheme, Qt::CaseInsensitive) ||
        rest.startsWith(secureScheme, Qt::CaseInsensitive))
        edit_->setText(rest.toString());
}

void HowToAddPage::command(int id) {
    switch (id) {
    case CommandWizardNext:
        return fromUrl_->isChecked() ? goOnWithUrl() : goOnWithFile();
    case CommandWizardGoOn:
        return handleType();
    case CommandCancelWizard:
        return leave(CommandCancelWizard);
    default:
        break;
    }
}

void HowToAddPage::goOnWithUrl() {
    const QString typed = lowerCased(edit_->text());
    if (typed.size() <= longestTooShort)
        return ShowError(state(), wrongUrlString);
    url_ = withoutControls(typed).trimmed();
    await([&registry = state().device.registry, url = url_](
              const StopSignal &stop) { return probeType(registry, url, {.stop = &stop}); },
          [this](const std::optional<QString> &type) {
              type_ = type;
              dialog().post(CommandWizardGoOn);
          });
}

// An address without a known type may be a feed whose server is out of reach at present.
void HowToAddPage::handleType() {
    if (type_ && type_->startsWith(QLatin1String("<opml")))
        openNext(AddMode::ListFromUrl, url_);
    else if (!type_ && url_.endsWith(QLatin1String("opml")))
        ShowError(state(), 0);
    else
        openNext(AddMode::FeedFromUrl, url_);
}

void HowToAddPage::goOnWithFile() {
    const QString path =
        chooseFileToOpen(state().stack, {.title = resourceString(newChannelString),
                                         .filterName = resourceString(opmlFilterString),
                                         .pattern = QStringLiteral("*.opml"),
                                         .name = {}});
    if (!path.isNull())
        openNext(AddMode::ListFromFile, path);
}

void HowToAddPage::openNext(AddMode mode, const QString &source) {
    int result = 0;
    if (mode == AddMode::FeedFromUrl) {
        CategoryPage page(adding_, {{{}, {}, source}});
        result = RunDialog(CategoryChoiceTemplate, state().stack, page);
    } else {
        ChannelChoicePage page(adding_, mode, source);
        result = RunDialog(ChannelChoiceTemplate, state().stack, page);
    }
    if (result != CommandWizardBack)
        leave(result);
}

int runNewChannelWizard(AppState &state, QObject *receiver, const JobEnd &added) {
    HowToAddPage page({state, receiver, added});
    const int result = RunDialog(HowToAddTemplate, state.stack, page);
    return result == CommandFinish ? 0 : CommandCancelWizard;
}

} // namespace tidebrook
