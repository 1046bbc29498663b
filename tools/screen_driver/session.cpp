#include "screen_driver/session.h"

#include "kit/dialog.h"
#include "kit/layer.h"
#include "kit/page/text_page.h"
#include "kit/progress_line.h"
#include "ui/category_list_screen.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

#include <chrono>
#include <semaphore>
#include <thread>

namespace tidebrook {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto timeout = 30s; // which only a test that fails needs
constexpr auto lookAgainAfter = 2ms;

QString checkText(bool isChecked, const QString &text) {
    return (isChecked ? u"x "_s : u"- "_s) + text;
}

/// Null for what is no control of a user.
QString controlText(const QObject *control) {
    QStringList texts;
    if (const auto *edit = qobject_cast<const QLineEdit *>(control))
        return edit->text();
    if (const auto *button = qobject_cast<const QAbstractButton *>(control))
        return checkText(button->isChecked(), button->text());
    if (const auto *box = qobject_cast<const QComboBox *>(control)) {
        for (int i = 0; i < box->count(); ++i)
            texts.append((i == box->currentIndex() ? u"[%1]"_s : u"%1"_s).arg(box->itemText(i)));
        return texts.join(u' ');
    }
    const auto *list = qobject_cast<const ListView *>(control);
    if (list == nullptr || !list->isCheckable())
        return {};
    for (int i = 0; i < list->rowCount(); ++i)
        texts.append(checkText(list->isChecked(i), list->rowText(i)));
    return texts.join(u", ") + u'.';
}

} // namespace

void User::act(std::function<void()> action) { mailbox_.post(std::move(action)); }

void User::look(const std::function<void()> &view) {
    std::binary_semaphore isDone(0);
    mailbox_.post([&] {
        view();
        isDone.release();
    });
    isDone.acquire();
}

bool User::sees(const std::function<bool()> &condition) {
    const auto end = std::chrono::steady_clock::now() + timeout;
    while (true) {
        bool isTrue = false;
        look([&] { isTrue = condition(); });
        if (isTrue || std::chrono::steady_clock::now() > end)
            return isTrue;
        std::this_thread::sleep_for(lookAgainAfter);
    }
}

QStringList User::seen(Texts texts) {
    QStringList seen;
    look([&] { seen = (this->*texts)(); });
    return seen;
}

bool User::seesSame(Texts texts, const QStringList &expected) {
    const bool isSame = sees([&] { return (this->*texts)() == expected; });
    if (!isSame)
        fail_(u"sees " + seen(texts).join(u" | "));
    return isSame;
}

ListView *User::list() const {
    for (ListView *list : stack_.findChildren<ListView *>()) {
        if (list->isVisible())
            return list;
    }
    return nullptr;
}

QStringList User::headingNow() const {
    const auto *dialog = qobject_cast<Dialog *>(stack_.top());
    if (dialog != nullptr && dialog->headerBar() != nullptr)
        return {dialog->headerBar()->caption()};
    const QString box = stack_.top() != nullptr ? stack_.top()->accessibleDescription() : QString();
    return {box.section(u'\n', 0, 0)};
}

QStringList User::rowsNow() const { return list() != nullptr ? list()->rowTexts() : QStringList(); }

QStringList User::linesNow() const {
    QStringList lines;
    for (int i = 0; list() != nullptr && i < list()->rowCount(); ++i) {
        const ListRow row = list()->row(i);
        const bool isUnread = qstrcmp(list()->image(row.image), "article-unread") == 0;
        lines.append((isUnread ? u"*%1: %2"_s : u"%1: %2"_s).arg(row.text, row.detail));
    }
    return lines;
}

QStringList User::controlsNow() const {
    const auto *dialog = qobject_cast<Dialog *>(stack_.top());
    if (dialog == nullptr)
        return {};
    if (!dialog->form().isEnabled())
        return {u"waiting"_s};
    QStringList texts;
    for (const QObject *control : dialog->form().children())
        texts.append(controlText(control));
    texts.removeAll(QString());
    return texts;
}

bool User::seesBox(const QString &text, const QString &subject) {
    if (!seesSame(&User::headingNow, {text}))
        return false;
    const auto isSubject = [&](const QLabel &label) {
        return label.text().remove(u'\n') == subject &&
               stack_.top()->accessibleDescription().endsWith(u'\n' + subject);
    };
    return subject.isNull() || seesPart<QLabel>(isSubject);
}

bool User::seesPage(const QString &text) {
    return seesPart<TextPage>([&](auto &page) { return page.toPlainText().contains(text); });
}

bool User::seesQuiet() {
    constexpr int looks = 3; // what is done may have posted a command that begins more
    int quiet = 0;
    return sees([&] {
        quiet = stack_.progressLine().isAtWork() ? 0 : quiet + 1;
        return quiet == looks || stack_.isClosing();
    });
}

Session::Session(const DeviceRoot &device, const QSize &screen, User::Failure fail)
    : device_(device), user_(stack_, std::move(fail)) {
    device_.open(5s);
    stack_.resize(screen);
    stack_.show();
    state_ = std::make_unique<AppState>(device_, stack_);
}

Session::~Session() {
    state_.reset();
    device_.close();
}

bool Session::run(const std::function<void(User &)> &work) {
    bool isUserDone = false;
    std::thread hands([&] {
        work(user_);
        user_.seesQuiet(); // what was asked last is not overtaken
        user_.closeWindow();
        user_.act([&] { isUserDone = true; });
    });
    show();
    while (!isUserDone) // who has left the screens may still want to look
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    hands.join();
    state_->finish();
    return stack_.top() == nullptr;
}

void Session::show() { OpenCategoryList(*state_); }

} // namespace tidebrook
