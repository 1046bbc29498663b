#include "share/dialogs/how_to_add_page.h"

#include "app/messages.h"
#include "app/text_screens.h"
#include "kit/dialog.h"
#include "kit/files/file_dialog.h"
#include "platform/base/text.h"
#include "res/commands.h"
#include "res/ids.h"
#include "res/strings.h"
#include "share/dialogs/category_page.h"
#include "share/dialogs/channel_choice_page.h"
#include "share/feed_probe.h"

#include <QAbstractButton>
#include <QLineEdit>

#include <algorithm>

namespace tidebrook {

namespace {

constexpr int urlLimit = 511;
constexpr qsizetype longestTooShort = 11; // as "http://.xml"
constexpr QStringView scheme = u"http://";
constexpr QStringView secureScheme = u"https://";

// Servers are asked in lower case, whatever was typed: one character for one.
QString lowerCased(QString url) {
    std::transform(url.begin(), url.end(), url.begin(), [](QChar c) { return c.toLower(); });
    return url;
}

} // namespace

HowToAddPage::HowToAddPage(const ChannelAdding &adding)
    : FormProcedure(adding.state, CommandCancelWizard, CommandWizardNext), adding_(adding) {}

bool HowToAddPage::initialise(Dialog &dialog) {
    fromUrl_ = dialog.control<QAbstractButton>(FromUrlButton);
    auto *fromFile = dialog.control<QAbstractButton>(FromFileButton);
    edit_ = dialog.control<QLineEdit>(AddressEdit);
    if (fromUrl_ == nullptr || fromFile == nullptr || edit_ == nullptr ||
        !prepare(dialog, HowToAddMenuBar))
        return false;
    edit_->setMaxLength(urlLimit);
    edit_->setInputMethodHints(Qt::ImhUrlCharactersOnly | Qt::ImhNoAutoUppercase);
    edit_->setText(scheme.toString());
    QObject::connect(edit_, &QLineEdit::textEdited, &dialog, [this] { dropSecondScheme(); });
    fromUrl_->setChecked(true);
    for (QAbstractButton *way : {fromUrl_, fromFile})
        QObject::connect(way, &QAbstractButton::clicked, &dialog, [this] { chooseWay(); });
    dialog.setFirstFocus(edit_);
    return true;
}

void HowToAddPage::chooseWay() {
    edit_->setReadOnly(!fromUrl_->isChecked());
    if (!fromUrl_->isChecked())
        return;
    edit_->setFocus();
    edit_->end(false);
}

// A whole address that is put behind the scheme which stands there brings its own.
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

// An address that does not tell may be that of a feed whose server is out of reach at present.
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
                                         .name = {},
                                         .help = [this] { showHelp(state()); }});
    if (!path.isNull())
        openNext(AddMode::ListFromFile, path);
}

void HowToAddPage::openNext(AddMode mode, const QString &source) {
    int result = 0;
    if (mode == AddMode::FeedFromUrl) {
        CategoryPage page(adding_, source);
        result = RunDialog(CategoryChoiceTemplate, state().stack, page);
    } else {
        ChannelChoicePage page(adding_, mode, source);
        result = RunDialog(ChannelChoiceTemplate, state().stack, page);
    }
    if (result != CommandWizardBack)
        leave(result);
}

} // namespace tidebrook
